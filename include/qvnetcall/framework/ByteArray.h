#pragma once

#include "qvnetcall/framework/Array.h"

/// An array of bytes.
class CByteArray : public CArray<unsigned char, unsigned char> {};
