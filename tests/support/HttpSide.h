// The server's side of HTTP, written by hand.
#pragma once

#include <string>

#include "WholeFrame.h"

namespace qv {

struct HttpRequestSeen {
  // The request line and the headers, with their line ends.
  std::string head;
  // The frame in the body; kMalformed if the body has more bytes than that.
  WholeFrame frame;
};

// Receives one request and stores its file as `file_path`. Returns false if the client disconnected
// or sent something else.
bool ReceiveHttp(wire::ByteStream& stream, HttpRequestSeen& request,
                 const std::string& file_path = "");

// Returns an answer: the status line and headers, including "Content-Length", and `body`.
std::string HttpAnswer(const std::string& body, const std::string& more_headers = "",
                       const std::string& status = "200 OK");

// Answers with a frame that holds `payload` and the file.
bool ReplyHttp(wire::ByteStream& stream, const std::string& payload,
               wire::OutgoingFile* file = nullptr, const std::string& more_headers = "");

// Answers every request with its own payload.
void EchoHttp(wire::ByteStream& stream);

}  // namespace qv
