#pragma once

#include "qvnetcall/framework/Map.h"
#include "qvnetcall/framework/String.h"

/// A map from text to text; keys are compared byte by byte. Ownership and threads as CMap has them.
class CMapStringToString : public CMap<CString, const CString&, CString, const CString&> {};
