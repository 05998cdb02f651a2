// Builds against the installed headers both ways a program may name them, creates a job item
// file, writes and reads back one record.
#include <tarsel.h>
#include <tarsel/REJobFile.h>

#include <cstdio>
#include <cstring>
#include <string>

int main(int argc, char** argv) {
    const std::string path = std::string(argc > 1 ? argv[1] : ".") + "/consumer.dat";
    REJobFile file;
    if (!file.CreateNewFile(path) || !file.Initialize(path))
        return 1;
    ESTJOBFILERECORD rec{};
    std::strcpy(rec.sCode1, "A");
    rec.nPageNo = 1;
    ESTJOBFILERECORD back{};
    if (!file.AddRecord(rec) || !file.GetFirstRecord(&back) || std::strcmp(back.sCode1, "A") != 0)
        return 1;
    std::printf("consumer: one job item written and read back\n");
    return 0;
}
