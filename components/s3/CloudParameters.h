// The parameters of the cloud component.
#pragma once

#include "components/queue/TransferSettings.h"
#include "transports/exchange/ParameterSet.h"

namespace qv {

class CloudParameters : public ParameterSet<TransferSettings> {
 public:
  CloudParameters();
};

}  // namespace qv
