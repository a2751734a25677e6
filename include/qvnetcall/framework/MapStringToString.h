#pragma once

#include "qvnetcall/framework/Map.h"
#include "qvnetcall/framework/String.h"

/// A map from text to text. Keys are compared byte by byte.
class CMapStringToString : public CMap<CString, const CString&, CString, const CString&> {};
