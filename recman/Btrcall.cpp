// The C entry point: checks the operation code, hands the call to the engine, and never lets an
// exception out.
#include "BTRCALL.h"

#include "recman/CallArgs.h"
#include "recman/Engine.h"

namespace recman {

namespace {

bool offeredWithoutBias(uint16_t op)
{
    switch (op) {
    case OpOpen: case OpClose: case OpInsert: case OpUpdate: case OpDelete: case OpCreate: case OpStat:
    case OpVersion: case OpUnlock:
        return true;
    default:
        return (op >= OpGetEqual && op <= OpGetLast) || op == OpStepNext || (op >= OpStepFirst && op <= OpStepPrevious);
    }
}

bool takesBias(uint16_t op)
{
    return (op >= OpGetEqual && op <= OpGetLast) || op == OpStepNext || (op >= OpStepFirst && op <= OpStepPrevious);
}

// Splits the code into base and bias; false when the pair is not offered.
bool splitOperation(uint16_t code, CallArgs& a)
{
    a.op = uint16_t(code % 100);
    a.bias = uint16_t(code - a.op);
    if (a.bias == BiasNone)
        return offeredWithoutBias(a.op);
    return a.bias <= BiasMultiple && takesBias(a.op);
}

}  // namespace

}  // namespace recman

extern "C" TARSEL_API int16_t BTRCALL(uint16_t operation, void* posBlock, void* dataBuffer, uint32_t* dataLength,
                                      void* keyBuffer, uint8_t keyLength, int8_t keyNumber)
{
    using namespace recman;
    try {
        CallArgs a;
        if (!splitOperation(operation, a))
            return StatusBadOperation;
        a.posBlock = posBlock;
        a.data = dataBuffer;
        a.dataLength = dataLength;
        a.key = keyBuffer;
        a.keyLength = keyLength;
        a.keyNumber = keyNumber;
        return Engine::instance().call(a);
    } catch (...) {
        return StatusStoreFailure;
    }
}

TARSEL_API void RESetServer(const char* conninfo)
{
    recman::Engine::selectServer(conninfo);
}
