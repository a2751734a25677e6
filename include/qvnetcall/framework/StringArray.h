#pragma once

#include "qvnetcall/framework/Array.h"
#include "qvnetcall/framework/String.h"

/// An array of texts; bounds, ownership and threads as CArray has them.
class CStringArray : public CArray<CString, const CString&> {};
