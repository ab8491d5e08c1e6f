#pragma once

// Codes of the trading service. Unscoped, with fixed underlying types: they cross the widget events as integers.

namespace rdservice {

/// Record type ids of the data centre.
enum ERecordType : int {
  RecordStkCompactChange = 13907,
  RecordStkClosedCompacts = 13915,
  RecordStkUnClosedCompacts = 13916,
  RecordStkUnClosedCompactsStatics = 13917,
  RecordAccountInfo = 10001,
  RecordInstrumentInfo = 10002,
  RecordCreditRepayPriorityResp = 13920,
  RequestQueryAccounts = 20001,
  RequestQueryInstruments = 20002,
  RequestLogin = 20003,
  RequestQueryCompactV2 = 20010,
  RequestQueryData = 20011,
};

/// Type of a compact, a character code. 32 stands for no restriction.
enum EKVCompactType : int { CompactTypeAll = ' ', CompactTypeFinancing = '0', CompactTypeSecuritiesLending = '1' };

/// Source of a compact, a character code.
enum EKVCompactBrushSource : int { BrushSourceNormal = '0', BrushSourceSpecial = '1' };

/// Trader types; the panels use the credit type only.
enum EKvTraderType : int { TraderTypeStock = 1, TraderTypeStockCredit = 8 };

/// Kind of broker account behind an account.
enum EBrokerType : int {
  BrokerTypeFuture = 1,
  BrokerTypeStock = 2,
  BrokerTypeCredit = 3,
  BrokerTypeStockOption = 6,
  BrokerTypeCreditInstitution = 11,  ///< a credit account under the loose matching rule only
};

/// Log-in state of an account at its counter.
enum EBROKER_LOGIN_STATUS : int {
  LoginStatusNone = -1,  ///< unknown account
  LoginStatusLoggedOut = 0,
  LoginStatusLoggingIn = 1,
  LoginStatusReady = 2,
  LoginStatusFailed = 3,
};

/// Whether requests for an account in this state can be answered.
constexpr bool isLoginStatusReady(EBROKER_LOGIN_STATUS status) { return status == LoginStatusReady; }

}  // namespace rdservice
