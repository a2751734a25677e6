// The parameters of the cloud component.
#pragma once

#include "components/queue/TransferSettings.h"
#include "transports/exchange/ParameterSet.h"

namespace qv::components {

class CloudParameters : public wire::ParameterSet<TransferSettings> {
 public:
  CloudParameters();
};

}  // namespace qv::components
