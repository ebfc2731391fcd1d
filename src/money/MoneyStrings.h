#pragma once

#include <Export.h>
#include <plugin/GlobalDefines.h>

#include <QString>

/// \file
/// Amounts of money as players read and write them.
///
/// An amount is an unsigned number of hundredths of its currency, or of whole chips for MONEYTYPE_PLAY and
/// MONEYTYPE_TOURN. Signs and separators come from the area "CORE" of the catalogue, so that each language has its
/// own; a text that is missing there is visible in the amount. Each call looks them up. A `char` is the server's
/// letter for a money type, see GetMoneyType(). Main thread.
namespace Globals {

/// Returns the sign of a currency; empty for points, tournament chips and unknown types, which have none.
/// @{
PLUGININTERFACE_EXPORT QString MoneyTypeToString(GlobalDefines::MoneyType type);
PLUGININTERFACE_EXPORT QString MoneyTypeToString(char type);
/// @}

/// Returns an amount for the screen: the sign and the number, with cents only if there are any. With \a thousands,
/// the whole number is in groups of three digits.
/// @{
PLUGININTERFACE_EXPORT QString MoneyToString(GlobalDefines::MoneyType type, unsigned int value, bool thousands);
PLUGININTERFACE_EXPORT QString MoneyToString(char type, unsigned int value, bool thousands);
/// @}

/// Returns an amount for a hand history: the short sign, the ungrouped number and the currency's long name, as far as
/// they exist, separated by spaces.
/// @{
PLUGININTERFACE_EXPORT QString MoneyToHistoryString(GlobalDefines::MoneyType type, unsigned int value);
PLUGININTERFACE_EXPORT QString MoneyToHistoryString(char type, unsigned int value);
/// @}

/// Reads an amount that a player has typed. Points and commas are equivalent, and their positions tell which of them
/// separates the cents. All other characters except digits are skipped, and further decimals are dropped. A text
/// without digits is 0 for currencies that have cents.
///
/// Returns false if there is no number, or it is larger than 2147483647; then \a errorKey and \a errorArea receive
/// the key and area of the text to show, and \a value doesn't change. Otherwise \a value receives the amount, and the
/// other two don't change. \a text is never changed, and each pointer may be null.
PLUGININTERFACE_EXPORT bool MoneyFromString(GlobalDefines::MoneyType type, QString &text, unsigned int *value,
                                            QString *errorKey, QString *errorArea);

/// Converts an amount by a rate in ten-thousandths, where 12500 is 1.25. Rounds down. A result that isn't an amount,
/// such as a negative one, becomes 0; one above the largest amount becomes the largest amount.
PLUGININTERFACE_EXPORT unsigned int ExchangeMoneyTo(unsigned int value, double rate);
/// Returns the smallest amount that ExchangeMoneyTo() converts to at least \a value at the same rate; 0 if the rate
/// isn't positive or there is no such amount.
PLUGININTERFACE_EXPORT unsigned int ExchangeMoneyBack(unsigned int value, double rate);

} // namespace Globals
