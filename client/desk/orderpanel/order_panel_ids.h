#pragma once

/// Ids of the order panel's controls, as they report them.
enum EOrderPanelId : int {
  IdOrderAccount = 30001,
  IdOrderOperation = 30002,
  IdOrderRepayType = 30003,
  IdPlaceOrder = 30004,
  IdOrderCommandMode = 30005,
};

/// Sides of the form at which the compacts stand, as EventPanelPosition names them.
enum EPanelSide : int { SideLeft = 1, SideRight = 2, SideTop = 32, SideBottom = 64 };
