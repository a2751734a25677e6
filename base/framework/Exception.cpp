#include "qvnetcall/framework/Exception.h"

CException::~CException() = default;

const char* CException::what() const noexcept { return "exception"; }
