// What the tests of single exchanges share: a scripted server that gives every request one answer.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "qvnetcall/RvoAd.h"
#include "qvnetcall/RvoFile.h"
#include "qvnetcall/RvoFolder.h"
#include "qvnetcall/RvoFolderEx.h"
#include "qvnetcall/RvoIdFile.h"
#include "qvnetcall/RvoIdFileEx.h"
#include "qvnetcall/RvoServer.h"
#include "server/ModuleState.h"
#include "tests/support/ScriptedTransport.h"
#include "tests/support/TempFolder.h"

namespace qv::test {

using Fields = ScriptedReply;

class Calls : public testing::Test {
 protected:
  Calls() {
    transport_.Reset();
    state_.Reset();
    state_.module_file = (folder_.Path() / "libQvNetCall4.so").string();
    folder_.Write("QvNetClient.ini", "[Basic]\nServerType=TCP_IP\n");
    CRvoServer::SetConinfo("main", 4000);
    Answer(Fields());
  }

  void Answer(const Fields& fields, int result = 0) {
    transport_.handler = [=](const SentRequest&, ScriptedReply& reply) {
      reply = fields;
      return result;
    };
  }

  const TempFolder folder_;
  ScriptedTransport& transport_ = ScriptedTransport::Get();
  ModuleState& state_ = ModuleState::Get();
};

}  // namespace qv::test
