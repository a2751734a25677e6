#include "Subjects.h"

#include <array>
#include <cstring>
#include <stdexcept>

#include "KeptBuffer.h"
#include "PeerTable.h"
#include "Peers.h"
#include "resultset/ResultTable.h"
#include "resultset/readers/ReaderThreads.h"
#include "resultset/readers/RecordsetReaders.h"

namespace qv {

namespace {

void AddCell(Checksum& checksum, std::int64_t value) {
  checksum.AddInteger(static_cast<std::int32_t>(value));
}
void AddCell(Checksum& checksum, double value) { checksum.AddDouble(value); }
void AddCell(Checksum& checksum, const DateCell& value) { checksum.AddDate(value.Date().m_dt); }
void AddCell(Checksum& checksum, std::string_view value) { checksum.AddText(value); }

Summary Sum(CRvoDbRes& result) {
  Checksum checksum;
  for (const Column& column : ResultTable::Of(result).Columns()) {
    std::visit(
        [&checksum](const auto& cells) {
          for (std::size_t row = 0; row < cells.size(); ++row) AddCell(checksum, cells[row]);
        },
        column.cells);
  }
  return {static_cast<std::uint64_t>(result.GetRecordCount()), checksum.Value()};
}

template <int threads>
Summary ReadOurs(Dialect dialect, const std::string& path, Purpose purpose) {
  SetReaderThreads(threads);
  const tagTEMPFILEINFO no_files{};
  CRvoDbRes result;
  const auto read = dialect == Dialect::kRowset ? ReadRowsetFile : ReadSchemaFile;
  if (!read(path.c_str(), result, no_files)) throw std::runtime_error("cannot read " + path);
  if (purpose == Purpose::kCompare) return Sum(result);
  return {static_cast<std::uint64_t>(result.GetRecordCount()), 0};
}

using Fill = void (*)(Dialect dialect, KeptBuffer& buffer, PeerTable& table);

// One buffer for all peers: it is large enough already, as a buffer of each would be.
KeptBuffer& PeersBuffer() {
  static KeptBuffer buffer;
  return buffer;
}

template <Fill fill>
Summary ReadPeer(Dialect dialect, const std::string& path, Purpose purpose) {
  KeptBuffer& buffer = PeersBuffer();
  buffer.Load(path);
  PeerTable table;
  fill(dialect, buffer, table);
  return purpose == Purpose::kCompare ? table.Sum() : Summary{table.Rows(), 0};
}

// The least that a reader must do: load the file, and find each place where a value may end.
Summary ReadFloor(Dialect dialect, const std::string& path, Purpose) {
  KeptBuffer& buffer = PeersBuffer();
  buffer.Load(path);
  const char mark = dialect == Dialect::kRowset ? '\'' : '<';
  const char* const end = buffer.Data() + buffer.Size();
  std::uint64_t stops = 0;
  for (const char* p = buffer.Data(); p != end; ++p, ++stops) {
    p = static_cast<const char*>(std::memchr(p, mark, static_cast<std::size_t>(end - p)));
    if (p == nullptr) break;
  }
  return {stops, 0};
}

constexpr std::array<Subject, 7> kSubjects = {{{"ours", true, ReadOurs<1>},
                                               {"ours-2", true, ReadOurs<2>},
                                               {"pugixml", true, ReadPeer<FillWithPugixml>},
                                               {"rapidxml", true, ReadPeer<FillWithRapidXml>},
                                               {"expat", true, ReadPeer<FillWithExpat>},
                                               {"libxml2", true, ReadPeer<FillWithLibXml2>},
                                               {"floor", false, ReadFloor}}};

}  // namespace

std::span<const Subject> AllSubjects() { return kSubjects; }

}  // namespace qv
