#pragma once

#include <QCommandLineParser>

namespace Options {

/// The value of an option that takes a number. False, with the reason in \a error, if it isn't one within the limits.
bool ReadNumber(const QCommandLineParser &parser, const QCommandLineOption &option, quint32 least, quint32 most,
                quint32 &number, QString &error);

} // namespace Options
