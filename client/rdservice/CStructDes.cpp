#include "rdservice/CStructDes.h"

#include "rdservice/CAccountInfo.h"
#include "rdservice/CInternedText.h"
#include "rdservice/hash_mix.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <functional>

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

bool sameField(const CFieldDes& field, const IData& a, const IData& b) {
  switch (field.type) {
    case EFieldType::Account: return sameAccount(field.get<CAccountInfoPtr>(a), field.get<CAccountInfoPtr>(b));
    case EFieldType::Text: return field.get<std::string>(a) == field.get<std::string>(b);
    case EFieldType::Interned: return field.get<CInternedText>(a) == field.get<CInternedText>(b);
    case EFieldType::Char: return field.get<char>(a) == field.get<char>(b);
    case EFieldType::Int32: return field.get<std::int32_t>(a) == field.get<std::int32_t>(b);
    case EFieldType::Int64: return field.get<std::int64_t>(a) == field.get<std::int64_t>(b);
    case EFieldType::Double: return doubleBits(field.get<double>(a)) == doubleBits(field.get<double>(b));
  }
  assert(false);
  return false;
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
  const CStructDes& des = a.getStructDes();
  if (des.typeId() != b.getStructDes().typeId()) return false;
  return std::all_of(des.begin(), des.end(), [&](const CFieldDes& field) { return sameField(field, a, b); });
}

std::uint64_t fingerprint(const IData& record) {
  const CStructDes& des = record.getStructDes();
  auto hash = static_cast<std::uint64_t>(des.typeId());
  for (const CFieldDes& field : des) hash = mixHash(hash, hashField(field, record));
  return hash;
}

}  // namespace rdservice
