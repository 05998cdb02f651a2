#include "recman/sqlite/SqliteSchema.h"

#include <cstdio>

namespace recman::sqlite {

namespace {

std::string col(char prefix, size_t i) { return prefix + std::to_string(i); }

std::string hexBlob(const std::string& bytes)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string out = "X'";
    for (unsigned char c : bytes) {
        out.push_back(digits[c >> 4]);
        out.push_back(digits[c & 15]);
    }
    out.push_back('\'');
    return out;
}

std::vector<std::string> keySeeks(size_t i, bool duplicates)
{
    const std::string k = col('k', i);
    const std::string s = col('s', i);
    const std::string all = "SELECT n, v, d, " + k + ", " + s + " FROM rec WHERE " + k + " IS NOT NULL";
    const std::string head = all + " AND ";
    const std::string up = duplicates ? " ORDER BY " + k + ", " + s + " LIMIT 1" : " ORDER BY " + k + " LIMIT 1";
    const std::string down =
        duplicates ? " ORDER BY " + k + " DESC, " + s + " DESC LIMIT 1" : " ORDER BY " + k + " DESC LIMIT 1";
    std::vector<std::string> v(size_t(Seek::Previous) + 1);
    // One row at most for a unique key: no order to ask for.
    v[size_t(Seek::Equal)] = head + k + "=?1" + (duplicates ? " ORDER BY " + s + " LIMIT 1" : std::string(" LIMIT 1"));
    v[size_t(Seek::Greater)] = head + k + ">?1" + up;
    v[size_t(Seek::GreaterOrEqual)] = head + k + ">=?1" + up;
    v[size_t(Seek::Less)] = head + k + "<?1" + down;
    v[size_t(Seek::LessOrEqual)] = head + k + "<=?1" + down;
    v[size_t(Seek::First)] = all + up;
    v[size_t(Seek::Last)] = all + down;
    if (duplicates) {
        v[size_t(Seek::Next)] = head + "(" + k + ", " + s + ")>(?1, ?2)" + up;
        v[size_t(Seek::Previous)] = head + "(" + k + ", " + s + ")<(?1, ?2)" + down;
    } else {
        v[size_t(Seek::Next)] = v[size_t(Seek::Greater)];
        v[size_t(Seek::Previous)] = v[size_t(Seek::Less)];
    }
    return v;
}

}  // namespace

std::vector<const SegmentSpec*> autoIncrementFields(const FileSpec& spec)
{
    std::vector<const SegmentSpec*> fields;
    for (const KeySpec& key : spec.keys)
        for (const SegmentSpec& s : key.segments) {
            if (s.type != TypeAutoIncrement)
                continue;
            bool seen = false;
            for (const SegmentSpec* f : fields)
                seen = seen || (f->position == s.position && f->length == s.length);
            if (!seen)
                fields.push_back(&s);
        }
    return fields;
}

std::vector<std::string> schemaStatements(const FileSpec& spec)
{
    const size_t autos = autoIncrementFields(spec).size();
    std::string rec = "CREATE TABLE rec(n INTEGER PRIMARY KEY, v INTEGER NOT NULL, d BLOB NOT NULL";
    for (size_t i = 0; i < spec.keys.size(); ++i)
        rec += ", " + col('k', i) + " BLOB, " + col('s', i) + " INTEGER";
    for (size_t j = 0; j < autos; ++j)
        rec += ", " + col('a', j) + " INTEGER";
    rec += ")";

    std::vector<std::string> out = {
        "CREATE TABLE meta(name TEXT PRIMARY KEY, value BLOB NOT NULL)",
        rec,
        "INSERT INTO rec(n, v, d) VALUES(1, 0, 0)",
        "CREATE TABLE opens(host INTEGER, pid INTEGER, tok INTEGER, h INTEGER, excl INTEGER, PRIMARY KEY(host, pid, tok, h)) "
        "WITHOUT ROWID",
        "CREATE TABLE locks(n INTEGER, host INTEGER, pid INTEGER, tok INTEGER, h INTEGER, PRIMARY KEY(n, host, pid, tok, h)) "
        "WITHOUT ROWID",
        std::string("INSERT INTO meta VALUES('signature', '") + SchemaSignature + "')",
        "INSERT INTO meta VALUES('spec', " + hexBlob(spec.statBlock(0)) + ")",
    };
    for (size_t i = 0; i < spec.keys.size(); ++i) {
        const bool dup = spec.keys[i].duplicates;
        out.push_back(std::string(dup ? "CREATE INDEX " : "CREATE UNIQUE INDEX ") + col('x', i) + " ON rec(" +
                      col('k', i) + (dup ? ", " + col('s', i) : std::string()) + ") WHERE " + col('k', i) +
                      " IS NOT NULL");
    }
    for (size_t j = 0; j < autos; ++j)
        out.push_back("CREATE INDEX " + col('y', j) + " ON rec(" + col('a', j) + ") WHERE " + col('a', j) +
                      " IS NOT NULL");
    return out;
}

SqlText SqlText::forSpec(const FileSpec& spec)
{
    SqlText t;
    const size_t keys = spec.keys.size();
    const size_t autos = autoIncrementFields(spec).size();
    for (size_t i = 0; i < keys; ++i)
        t.seekKey.push_back(keySeeks(i, spec.keys[i].duplicates));
    t.physicalFirst = "SELECT n, v, d FROM rec WHERE v>0 ORDER BY n LIMIT 1";
    t.physicalLast = "SELECT n, v, d FROM rec WHERE v>0 ORDER BY n DESC LIMIT 1";
    t.physicalNext = "SELECT n, v, d FROM rec WHERE n>?1 AND v>0 ORDER BY n LIMIT 1";
    t.physicalPrevious = "SELECT n, v, d FROM rec WHERE n<?1 AND v>0 ORDER BY n DESC LIMIT 1";
    t.readRecord = "SELECT n, v, d FROM rec WHERE n=?1 AND v>0";

    std::string cols = "n, v, d";
    std::string params = "?1, ?2, ?3";
    std::string sets = "v=?2, d=?3";
    int p = 4;
    for (size_t i = 0; i < keys; ++i) {
        const std::string k = col('k', i), s = col('s', i);
        cols += ", " + k + ", " + s;
        params += ", ?" + std::to_string(p) + ", ?" + std::to_string(p + 1);
        sets += ", " + k + "=?" + std::to_string(p) + ", " + s + "=coalesce(?" + std::to_string(p + 1) + ", " + s + ")";
        p += 2;
    }
    for (size_t j = 0; j < autos; ++j) {
        const std::string a = col('a', j);
        cols += ", " + a;
        params += ", ?" + std::to_string(p);
        sets += ", " + a + "=?" + std::to_string(p);
        ++p;
        t.autoMax.push_back("SELECT max(" + a + ") FROM rec WHERE " + a + " IS NOT NULL");
        t.autoExists.push_back("SELECT 1 FROM rec WHERE " + a + "=?1 LIMIT 1");
    }
    t.insert = "INSERT INTO rec(" + cols + ") VALUES(" + params + ")";
    t.update = "UPDATE rec SET " + sets + " WHERE n=?1";
    t.updateData = "UPDATE rec SET v=?2, d=?3 WHERE n=?1";
    t.remove = "DELETE FROM rec WHERE n=?1";
    return t;
}

}  // namespace recman::sqlite
