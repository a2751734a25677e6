#include "qvnetcall/framework/InvalidArgException.h"

CInvalidArgException::~CInvalidArgException() = default;

const char* CInvalidArgException::what() const noexcept { return "invalid argument"; }

void AfxThrowInvalidArgException() { throw CInvalidArgException(); }
