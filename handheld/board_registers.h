#pragma once

/// Registers of address space 1 of the radar-altimeter board.
namespace handheld {

/// @name Digital board
/// @{
constexpr unsigned int DIGITAL_CARD_ID = 0;
constexpr unsigned int DIGITAL_CARD_REVISION = 4;
constexpr unsigned int DIGITAL_FIRMWARE = 8;
constexpr unsigned int DIGITAL_TEMPERATURE = 40;  ///< raw count
/// @}

/// @name RF board
/// From FIRST_RF_REGISTER to LAST_RF_REGISTER; read through RF_REQUEST, except RF_STATUS.
/// @{
constexpr unsigned int FIRST_RF_REGISTER = 128;
constexpr unsigned int RF_CARD_ID = 128;
constexpr unsigned int RF_CARD_REVISION = 132;
constexpr unsigned int RF_FIRMWARE = 136;
constexpr unsigned int RF_ADC = 196;     ///< channel select on write, conversion result on read
constexpr unsigned int RF_STATUS = 248;  ///< bit 0: an RF ADC is fitted; read directly
constexpr unsigned int LAST_RF_REGISTER = 248;
/// Written with an RF register's address to start its transfer; on read, the register's bit is set while the transfer
/// is pending.
constexpr unsigned int RF_REQUEST = 252;
constexpr unsigned int RF_CONTROL = 0x20004;  ///< bit 0 must be clear while the RF ADC is addressed
/// @}

}  // namespace handheld
