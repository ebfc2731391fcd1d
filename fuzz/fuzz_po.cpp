// The translators' files: texts that were read without an error are written and read again unchanged.

#include "Fuzz.h"

#include <plugininterface-data/PoCatalogue.h>

namespace {

QString Describe(const SPoCatalogue &catalogue)
{
    QStringList texts{QString::number(catalogue.iID), catalogue.strShort, catalogue.strLong};
    for (const SPoCatalogue::SText &text : catalogue.texts)
        texts += {text.GetName(), text.strText}; // fuzziness isn't written
    return texts.join(QLatin1Char('\n'));
}

} // namespace

void FuzzOne(QByteArray bytes)
{
    const CInstallationTree &installation = Fuzz::Library().GetInstallation();
    installation.WriteFile(QStringLiteral("read/en.po"), bytes);
    CReport report;
    const QVector<SPoCatalogue> catalogues =
        PoCatalogues::ReadFolder(installation.GetPath(QStringLiteral("read")), report);
    if (report.HasErrors() || catalogues.isEmpty())
        return;
    const QString path = installation.WriteFile(QStringLiteral("written/en.po"), QByteArray());
    Fuzz::Require(PoCatalogues::Write(path, catalogues.first(), report), "a catalogue can be written");
    const auto again = PoCatalogues::ReadFolder(installation.GetPath(QStringLiteral("written")), report);
    Fuzz::Require(!report.HasErrors() && again.size() == 1, "what was written can be read");
    Fuzz::Require(Describe(again.first()) == Describe(catalogues.first()), "the texts are the same");
}
