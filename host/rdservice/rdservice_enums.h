#pragma once

// Codes of the trading service. Unscoped, with fixed underlying types: they cross the widget events as integers.

namespace rdservice {

/// Record type ids of the data centre.
enum ERecordType : int {
  RecordStkOrder = 13904,
  RecordPositionStatics = 13905,
  RecordStkCompactChange = 13907,
  RecordStkClosedCompacts = 13915,
  RecordStkUnClosedCompacts = 13916,
  RecordStkUnClosedCompactsStatics = 13917,
  RecordAccountInfo = 10001,
  RecordInstrumentInfo = 10002,
  RecordPriceData = 10003,
  RecordCreditRepayPriorityResp = 13920,
  RecordErrorResp = 13921,
  RecordQueryAppointmentInfoResp = 13922,
  RecordStockSMTQueryAppointmentInfoResp = 16886,
  RequestQueryAccounts = 20001,
  RequestQueryInstruments = 20002,
  RequestLogin = 20003,
  RequestQueryCompactV2 = 20010,
  RequestQueryData = 20011,
  RequestPlaceOrder = 20012,
  RequestSubscribeQuotes = 20013,
  RequestSetCreditRepayPriority = 20014,
  RequestCompactRenewal = 20015,
  RequestQueryAppointmentInfo = 20016,
};

/// Type of a compact, a character code. 32 stands for no restriction.
enum EKVCompactType : int { CompactTypeAll = ' ', CompactTypeFinancing = '0', CompactTypeSecuritiesLending = '1' };

/// Source of a compact, a character code.
enum EKVCompactBrushSource : int { BrushSourceNormal = '0', BrushSourceSpecial = '1' };

/// Trader types; the panels use the credit type only.
enum EKvTraderType : int { TraderTypeStock = 1, TraderTypeStockCredit = 8 };

/// What an order does. The special ones concern compacts of special source, the others those of normal source.
enum EOperationType : int {
  OperationBuy = 18,
  OperationSell = 19,
  OperationFinancingBuy = 20,
  OperationLendingSell = 21,
  OperationBuyToReturn = 22,   ///< buys securities and returns them
  OperationDirectReturn = 23,  ///< returns securities that the account holds
  OperationSellToRepay = 24,   ///< sells securities and repays money with what they bring
  OperationDirectRepay = 25,   ///< repays money that the account has
  OperationSpecialDirectReturn = 1012,
  OperationSpecialBuyToReturn = 1021,
};

/// What a direct repayment of money pays, a character code.
enum ERepayType : int {
  RepayTypeFinancing = '0',  ///< principal and interest of financing, in the counter's order
  RepayTypeFinancingInterest = '1',
  RepayTypeLendingFee = '3',       ///< fees of securities lending
  RepayTypeLendingInterest = '4',  ///< interest of securities lending
};

/// Side of a position or entrust, a character code.
enum EKVEntrustDirection : int { EntrustDirectionBuy = '0', EntrustDirectionSell = '1' };

/// Purpose of a position, a character code; securities are held under the first.
enum EKVHedgeFlag : int { HedgeFlagSpeculation = '1', HedgeFlagArbitrage = '2', HedgeFlagHedge = '3' };

/// What became of an order, a character code.
enum EKVOrderState : int {
  OrderEntrusted = '0',   ///< the counter has taken it
  OrderFilled = '1',      ///< done, as a whole
  OrderRefused = '2',     ///< nothing was done; `CStkOrder::reason` says why
  OrderUnanswered = '3',  ///< the counter did not answer, and may have it or not
};

/// Kinds of positions; see CPositionStaticsHelper.
enum EPositionKind : int { PositionKindHeld = 1 };

/// Prices that CPriceDataHelper knows.
enum EPriceSource : int { PriceSourceLast = 19999 };

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
