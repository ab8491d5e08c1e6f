// Any bytes as an .xlsx. What does not begin like a zip file becomes the XML of a sheet inside one, and what stands
// behind a zero byte that of its shared texts, so that the fuzzer need not learn to pack.

#include "gw/files/sheet_reader.h"
#include "gw/files/table_limits.h"

#include <QBuffer>
#include <QDataStream>

#include <cstdint>
#include <cstdlib>

namespace {

constexpr quint32 LOCAL = 0x04034B50;
constexpr quint32 CENTRAL = 0x02014B50;
constexpr quint32 DIRECTORY_END = 0x06054B50;
constexpr quint16 VERSION = 20;

struct CPart {
  QByteArray name;
  QByteArray content;
};

/// What the local header and the directory entry of a part have in common: stored, without time and checksum.
void putCommon(QDataStream& to, const CPart& part) {
  const auto size = static_cast<quint32>(part.content.size());
  to << VERSION << quint16{0} << quint16{0} << quint32{0} << quint32{0} << size << size
     << static_cast<quint16>(part.name.size()) << quint16{0};
}

QByteArray zipOf(const std::vector<CPart>& parts) {
  QByteArray zip, directory;
  QDataStream file(&zip, QIODevice::WriteOnly), entries(&directory, QIODevice::WriteOnly);
  file.setByteOrder(QDataStream::LittleEndian);
  entries.setByteOrder(QDataStream::LittleEndian);
  for (const CPart& part : parts) {
    const auto offset = static_cast<quint32>(zip.size());
    file << LOCAL;
    putCommon(file, part);
    file.writeRawData(part.name.constData(), part.name.size());
    file.writeRawData(part.content.constData(), part.content.size());
    entries << CENTRAL << VERSION;
    putCommon(entries, part);
    entries << quint16{0} << quint16{0} << quint16{0} << quint32{0} << offset;
    entries.writeRawData(part.name.constData(), part.name.size());
  }
  const auto offset = static_cast<quint32>(zip.size());
  const auto count = static_cast<quint16>(parts.size());
  file.writeRawData(directory.constData(), directory.size());
  file << DIRECTORY_END << quint16{0} << quint16{0} << count << count << static_cast<quint32>(directory.size())
       << offset << quint16{0};
  return zip;
}

QByteArray xlsxOf(const QByteArray& xml) {
  const int end = xml.indexOf('\0');
  return zipOf({
      {"_rels/.rels", "<R><R Id='a' Type='/officeDocument' Target='w'/></R>"},
      {"w", "<w><sheets><sheet id='s'/></sheets></w>"},
      {"_rels/w.rels",
       "<R><R Id='s' Type='/worksheet' Target='s'/><R Id='t' Type='/sharedStrings' Target='t'/>"
       "<R Id='y' Type='/styles' Target='y'/></R>"},
      {"y", "<y><cellXfs><xf numFmtId='0'/><xf numFmtId='14'/></cellXfs></y>"},
      {"s", xml.left(end)},
      {"t", end < 0 ? QByteArray("<t/>") : xml.mid(end + 1)},
  });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
  if (!bytes.startsWith("PK")) bytes = xlsxOf(bytes);
  QBuffer device(&bytes);
  device.open(QIODevice::ReadOnly);
  int width = 0;
  const auto checkRow = [&width](QStringList&& row) {
    if (width == 0) width = row.size();
    if (row.isEmpty() || row.size() < width || row.size() > GW::MAX_SHEET_COLUMNS) std::abort();
    qint64 chars = 0;
    for (const QString& cell : qAsConst(row)) chars += cell.size();
    if (chars == 0 || chars > GW::MAX_LINE) std::abort();
    return true;
  };
  const GW::CCancelFlag isCancelled(false);
  if (GW::readXlsx(device, checkRow, isCancelled) == GW::ReadCancelled) std::abort();
  return 0;
}
