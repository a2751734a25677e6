#pragma once

#include "qvnetcall/framework/Array.h"

/// An array of bytes; bounds, ownership and threads as CArray has them.
class CByteArray : public CArray<unsigned char, unsigned char> {};
