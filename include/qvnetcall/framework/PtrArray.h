#pragma once

#include "qvnetcall/framework/Array.h"

/// An array of pointers. The caller owns what they point to.
class CPtrArray : public CArray<void*, void*> {};
