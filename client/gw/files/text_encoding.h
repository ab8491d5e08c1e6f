#pragma once

#include "gw/files/table_reading.h"

class QIODevice;

namespace GW {

enum class ETextEncoding : unsigned char { Utf8, Utf16Le, Utf16Be, Gb18030 };

struct CTextStart {
  ETextEncoding encoding = ETextEncoding::Utf8;
  int markBytes = 0;  ///< of the byte order mark
};

/// Which encoding the text of a device is in, from its byte order mark, or else from all of it: what is not UTF-8 is
/// GB18030. Reads the device, which must be seekable, from its beginning, and leaves it somewhere.
CTextStart detectEncoding(QIODevice& device, const CCancelFlag& isCancelled);

}  // namespace GW
