#pragma once

#include "gw/files/table_reading.h"

#include <QString>

#include <vector>

namespace GW {

class CXmlPart;
class CZipFile;

/// The texts that the cells of an .xlsx point to, in one piece of memory. One thread.
class CSharedStrings {
 public:
  EReadResult read(CZipFile& file, const QString& name, const CCancelFlag& isCancelled);

  int count() const { return static_cast<int>(m_ends.size()); }
  /// `index` is from 0 to below `count()`.
  QString at(int index) const;

 private:
  QString m_texts;
  std::vector<int> m_ends;  ///< of each text in `m_texts`
};

/// Text of the present element, which holds plain text (t) or runs of it (r); readings (rPh) are left out.
QString richText(CXmlPart& xml);

}  // namespace GW
