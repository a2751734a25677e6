#include "CatalogueCall.h"

#include "base/framework/DecimalText.h"
#include "qvnetcall/ResultCodes.h"

namespace qv {

std::optional<std::int32_t> CatalogueCall::Ask() {
  if (exchange_.Send() == result::kNotDelivered) return {};
  return DecimalToInt32(exchange_.Reply().GetString(nullptr).View());
}

}  // namespace qv
