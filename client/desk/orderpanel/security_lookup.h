#pragma once

#include "rdservice/CInstrumentInfo.h"

#include <QString>

/// The security that a text names by its code, or by exchange and code ("SH600000"), in any case.
struct CNamedSecurity {
  rdservice::CInstrumentInfoPtr instrument;  ///< null when the text names none, or more than one
  QString problem;                           ///< then why, for users
};

CNamedSecurity findSecurity(const QString& text);

/// The shortest text by which `findSecurity` finds that security.
QString securityText(const std::string& exchangeId, const std::string& code);
