// The module as if freshly loaded from the test's own folder, over the scripted transport.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "ScriptedTransport.h"
#include "TempFolder.h"
#include "qvnetcall/RvoServer.h"
#include "server/ModuleState.h"

namespace qv::test {

class ModuleTest : public testing::Test {
 protected:
  ModuleTest() {
    transport_.Reset();
    state_.Reset();
    state_.module_file = folder_.At("libQvNetCall4.so");
    CRvoServer::SetConinfo("main", 4000);
  }
  // Sets the type in the file beside the module.
  void UseServerType(const std::string& type) {
    folder_.Write("QvNetClient.ini", "[Basic]\nServerType=" + type + "\n");
  }

  const TempFolder folder_;
  ScriptedTransport& transport_ = ScriptedTransport::Get();
  ModuleState& state_ = ModuleState::Get();
};

}  // namespace qv::test
