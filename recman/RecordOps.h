// The record operations of an open handle: Insert, Update, Delete, the Gets, the Steps, Unlock.
// REQUIRES: the handle is open and its file's mutex is held.
#pragma once

#include "recman/CallArgs.h"
#include "recman/Handle.h"

namespace recman::ops {

Status insert(Handle& h, const CallArgs& a);
Status update(Handle& h, const CallArgs& a);
Status remove(Handle& h, const CallArgs& a);
Status get(Handle& h, const CallArgs& a);
Status step(Handle& h, const CallArgs& a);
Status unlock(Handle& h, const CallArgs& a);

// Removes the handle's open registration and every lock it holds (Close).
Status release(Handle& h);

}  // namespace recman::ops
