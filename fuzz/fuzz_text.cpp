// Any bytes as a text file.

#include "gw/files/CLineReader.h"
#include "gw/files/table_limits.h"

#include <QBuffer>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
  QBuffer device(&bytes);
  device.open(QIODevice::ReadOnly);
  const auto checkLine = [](QStringList&& row) {
    const QString& line = row.first();
    if (row.size() != 1 || line.size() > GW::MAX_LINE || line.contains(QLatin1Char('\n')) || line.contains(QChar(0)) ||
        !line.isValidUtf16())
      std::abort();
    return true;
  };
  const GW::CCancelFlag isCancelled(false);
  if (GW::readText(device, checkLine, isCancelled) == GW::ReadCancelled) std::abort();
  return 0;
}
