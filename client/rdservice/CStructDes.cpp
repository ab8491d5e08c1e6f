#include "rdservice/CStructDes.h"

#include "rdservice/CAccountInfo.h"
#include "rdservice/CInternedText.h"
#include "rdservice/hash_mix.h"
#include "utils/CMutex.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <functional>
#include <map>
#include <utility>
#include <vector>

namespace rdservice {

CStructDes::CStructDes(int typeId, const char* name, const CFieldDes* fields, std::size_t count)
    : m_typeId(typeId), m_name(name), m_fields(fields), m_count(count) {}
CStructDes::~CStructDes() = default;

const CFieldDes* CStructDes::fieldByNumber(int number) const {
  const auto* const found = std::find_if(begin(), end(), [number](const CFieldDes& f) { return f.number == number; });
  return found == end() ? nullptr : found;
}

const CFieldDes* CStructDes::fieldByName(std::string_view name) const {
  const auto* const found = std::find_if(begin(), end(), [name](const CFieldDes& f) { return f.name == name; });
  return found == end() ? nullptr : found;
}

const CFieldDes* CStructDes::fieldByFileId(int fileId) const {
  return fileId / 100 == m_typeId ? fieldByNumber(fileId % 100) : nullptr;
}

namespace {

bool sameAccount(const CAccountInfoPtr& a, const CAccountInfoPtr& b) {
  if (a == b) return true;
  return a != nullptr && b != nullptr && a->brokerType == b->brokerType && a->accountId == b->accountId;
}

/// Amounts compare and hash by their bits: a value that is not a number equals itself, so that it is not taken for a
/// change on every store.
std::uint64_t doubleBits(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

/// How records of a type are compared: runs of neighbouring plain members by their bytes, accounts and texts one by
/// one.
class CComparison {
 public:
  explicit CComparison(const IData& example) {
    for (const CFieldDes& field : example.getStructDes()) {
      const auto offset = static_cast<const char*>(field.address(example)) - reinterpret_cast<const char*>(&example);
      m_parts.push_back({offset, plainSize(field.type), field.type});
    }
    std::sort(m_parts.begin(), m_parts.end(), [](const CPart& a, const CPart& b) { return a.offset < b.offset; });
    const auto joined = [](CPart& part, const CPart& next) {
      const bool isNeighbour = part.size != 0 && next.size != 0 && part.offset + part.size == next.offset;
      if (isNeighbour) part.size += next.size;
      return isNeighbour;
    };
    std::size_t last = 0;
    for (std::size_t i = 1; i < m_parts.size(); ++i)
      if (!joined(m_parts[last], m_parts[i])) m_parts[++last] = m_parts[i];
    m_parts.resize(std::min(m_parts.size(), last + 1));
  }

  bool areSame(const IData& a, const IData& b) const {
    const auto* const left = reinterpret_cast<const char*>(&a);
    const auto* const right = reinterpret_cast<const char*>(&b);
    return std::all_of(m_parts.begin(), m_parts.end(),
                       [&](const CPart& part) { return part.isSame(left + part.offset, right + part.offset); });
  }

 private:
  struct CPart {
    std::ptrdiff_t offset;  ///< of the first byte, from the record's
    std::ptrdiff_t size;    ///< 0: an account or text
    EFieldType type;

    bool isSame(const char* a, const char* b) const {
      if (size != 0) return std::memcmp(a, b, static_cast<std::size_t>(size)) == 0;
      if (type == EFieldType::Text)
        return *reinterpret_cast<const std::string*>(a) == *reinterpret_cast<const std::string*>(b);
      return sameAccount(*reinterpret_cast<const CAccountInfoPtr*>(a), *reinterpret_cast<const CAccountInfoPtr*>(b));
    }
  };

  static std::ptrdiff_t plainSize(EFieldType type) {
    switch (type) {
      case EFieldType::Account:
      case EFieldType::Text: return 0;
      case EFieldType::Interned: return sizeof(CInternedText);
      case EFieldType::Char: return sizeof(char);
      case EFieldType::Int32: return sizeof(std::int32_t);
      case EFieldType::Int64: return sizeof(std::int64_t);
      case EFieldType::Double: return sizeof(double);
    }
    assert(false);
    return 0;
  }

  std::vector<CPart> m_parts;  ///< by offset
};

/// Made once for each type, from the first record that is compared; never freed.
const CComparison& comparisonOf(const IData& record) {
  const CStructDes* const des = &record.getStructDes();
  thread_local std::pair<const CStructDes*, const CComparison*> recent{};
  if (recent.first != des) {
    static utils::CMutex s_mutex;
    static auto* const s_all = new std::map<const CStructDes*, CComparison>;
    const utils::CMutexLock lock(s_mutex);
    recent = {des, &s_all->try_emplace(des, record).first->second};
  }
  return *recent.second;
}

std::uint64_t hashText(const std::string& text) { return std::hash<std::string>()(text); }

std::uint64_t hashField(const CFieldDes& field, const IData& record) {
  switch (field.type) {
    case EFieldType::Account: {
      const auto& account = field.get<CAccountInfoPtr>(record);
      if (account == nullptr) return 0;
      return mixHash(static_cast<std::uint32_t>(account->brokerType), hashText(account->accountId));
    }
    case EFieldType::Text: return hashText(field.get<std::string>(record));
    case EFieldType::Interned: return hashText(field.get<CInternedText>(record).str());
    case EFieldType::Char: return static_cast<unsigned char>(field.get<char>(record));
    case EFieldType::Int32: return static_cast<std::uint32_t>(field.get<std::int32_t>(record));
    case EFieldType::Int64: return static_cast<std::uint64_t>(field.get<std::int64_t>(record));
    case EFieldType::Double: return doubleBits(field.get<double>(record));
  }
  assert(false);
  return 0;
}

}  // namespace

bool sameFields(const IData& a, const IData& b) {
  if (&a == &b) return true;
  return a.getStructDes().typeId() == b.getStructDes().typeId() && comparisonOf(a).areSame(a, b);
}

std::uint64_t fingerprint(const IData& record) {
  const CStructDes& des = record.getStructDes();
  auto hash = static_cast<std::uint64_t>(des.typeId());
  for (const CFieldDes& field : des) hash = mixHash(hash, hashField(field, record));
  return hash;
}

}  // namespace rdservice
