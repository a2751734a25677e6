// The general XML parsers that the readers are measured against, each in its fastest mode that
// still returns correct values. The file in `buffer` may be changed. They throw std::runtime_error.
#pragma once

#include "KeptBuffer.h"
#include "PeerTable.h"
#include "RecordsetFiles.h"

namespace qv {

void FillWithPugixml(Dialect dialect, KeptBuffer& buffer, PeerTable& table);
void FillWithRapidXml(Dialect dialect, KeptBuffer& buffer, PeerTable& table);
void FillWithExpat(Dialect dialect, KeptBuffer& buffer, PeerTable& table);
void FillWithLibXml2(Dialect dialect, KeptBuffer& buffer, PeerTable& table);

}  // namespace qv
