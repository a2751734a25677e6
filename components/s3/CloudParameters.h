// The parameters of the cloud component.
#pragma once

#include "base/text/ParameterSet.h"
#include "components/queue/TransferSettings.h"

namespace qv::components {

class CloudParameters : public text::ParameterSet<TransferSettings> {
 public:
  CloudParameters();
};

}  // namespace qv::components
