#pragma once

#include <QCommandLineParser>

namespace Options {

/// Makes an option from texts in ASCII. Without a \a value it is a switch.
QCommandLineOption Make(const char *name, const char *meaning, const char *value = "", const char *byDefault = "");

/// Reads the value of an option that takes a number. Returns false, with the reason in \a error, if it isn't a number
/// within the limits.
bool ReadNumber(const QCommandLineParser &parser, const QCommandLineOption &option, quint32 least, quint32 most,
                quint32 &number, QString &error);

} // namespace Options
