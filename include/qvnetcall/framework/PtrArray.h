#pragma once

#include "qvnetcall/framework/Array.h"

/// An array of pointers; bounds and threads as CArray has them. What the pointers point at is the
/// caller's.
class CPtrArray : public CArray<void*, void*> {};
