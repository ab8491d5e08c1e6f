#pragma once

#include "gw/view/IFilterSource.h"

#include <QStringList>

namespace GW {

class CPlainRows;

/// A column of a plain table for the filter menu. GUI thread.
class CPlainFilterSource : public IFilterSource {
 public:
  /// `rows` outlives the source.
  CPlainFilterSource(CPlainRows& rows, int column);
  ~CPlainFilterSource() override;

  std::vector<CShownRows::CValue> values() override;
  QString text(std::uint32_t code) const override;
  void setFilter(const std::optional<std::vector<std::uint32_t>>& codes) override;

 private:
  CPlainRows& m_rows;
  const int m_column;
  QStringList m_texts;  ///< by code
};

}  // namespace GW
