#pragma once

#include <Export.h>
#include <plugin/GlobalDefines.h>

#include <QString>

/// \file
/// Amounts of money as players read and write them.
///
/// An amount is an unsigned number of hundredths of its currency; for the chips of MONEYTYPE_PLAY and
/// MONEYTYPE_TOURN, of whole chips. Signs and separators come from the catalogue, area "CORE", so that each language
/// has its own; a text that is missing there shows in the amount. Each call looks them up. A `char` is the server's
/// letter of a money type, see GetMoneyType(). Main thread.
namespace Globals {

/// The sign of a currency; empty for points, tournament chips and unknown types, which have none.
/// @{
PLUGININTERFACE_EXPORT QString MoneyTypeToString(GlobalDefines::MoneyType type);
PLUGININTERFACE_EXPORT QString MoneyTypeToString(char type);
/// @}

/// An amount for the screen: sign and number, cents only where there are any, and with \a thousands the whole number
/// in groups of three digits.
/// @{
PLUGININTERFACE_EXPORT QString MoneyToString(GlobalDefines::MoneyType type, unsigned int value, bool thousands);
PLUGININTERFACE_EXPORT QString MoneyToString(char type, unsigned int value, bool thousands);
/// @}

/// An amount for a hand history: the short sign, the ungrouped number and the currency's long name, where there are
/// any, with a blank between them.
/// @{
PLUGININTERFACE_EXPORT QString MoneyToHistoryString(GlobalDefines::MoneyType type, unsigned int value);
PLUGININTERFACE_EXPORT QString MoneyToHistoryString(char type, unsigned int value);
/// @}

/// Reads what a player has typed. Point and comma count alike, and their places tell which of them parts the cents;
/// all else but digits is passed over, further decimals are dropped. No digits at all are 0 where there are cents.
///
/// False if that is no number up to 2147483647, or if there is none; then \a errorKey and \a errorArea get the key
/// and area of the text to show, and \a value stays. Otherwise they stay and \a value gets the amount. \a text is
/// never changed, and each pointer may be null.
PLUGININTERFACE_EXPORT bool MoneyFromString(GlobalDefines::MoneyType type, QString &text, unsigned int *value,
                                            QString *errorKey, QString *errorArea);

/// Converts an amount by a rate in ten-thousandths, where 12500 is 1.25. Rounds down; what is no amount, such as a
/// negative one, is 0, and what is more than the largest is the largest.
PLUGININTERFACE_EXPORT unsigned int ExchangeMoneyTo(unsigned int value, double rate);
/// The smallest amount that ExchangeMoneyTo() by the same rate turns into at least \a value; 0 if the rate isn't
/// above 0, or if there is none.
PLUGININTERFACE_EXPORT unsigned int ExchangeMoneyBack(unsigned int value, double rate);

} // namespace Globals
