#pragma once

#include "qvnetcall/framework/Array.h"
#include "qvnetcall/framework/String.h"

/// An array of texts.
class CStringArray : public CArray<CString, const CString&> {};
