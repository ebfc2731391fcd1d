#include "LanguageCheck.h"

#include "PoCatalogue.h"

#include <ui/MenuManager.h>

#include <QMap>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>

namespace {

const QString MENU_BAR = QStringLiteral("MENU_BAR");

using TTexts = QMap<QPair<QString, QString>, SPoCatalogue::SText>;

QSet<QString> Markers(const QString &text)
{
    static const QRegularExpression marker(QStringLiteral("#\\w+#"));
    QSet<QString> markers;
    auto match = marker.globalMatch(text);
    while (match.hasNext())
        markers.insert(match.next().captured());
    return markers;
}

// Returns the markers in a fixed order, separated by spaces.
QString Listed(const QSet<QString> &markers)
{
    QStringList list = markers.values();
    list.sort();
    return list.join(QLatin1Char(' '));
}

QString Place(const SPoCatalogue &catalogue, const SPoCatalogue::SText &text)
{
    return catalogue.strFile + QLatin1Char(':') + QString::number(text.iLine);
}

// Returns the letter after "&", which is the shortcut of a menu's entry, in lower case; null if there is none. "&&"
// is a plain "&", as is one in front of a space.
QChar Shortcut(const QString &text)
{
    static const QRegularExpression letter(QStringLiteral("^(?:[^&]|&&|&\\s)*+&(\\S)"));
    const QString found = letter.match(text).captured(1);
    return found.isEmpty() ? QChar() : found.at(0).toCaseFolded();
}

// Returns whether a text is the title of one of the library's own menus, which are in the menu bar.
bool IsInMenuBar(const SPoCatalogue::SText &text)
{
    return text.strArea.compare(QLatin1String("CORE"), Qt::CaseInsensitive) == 0 &&
           QStringList{CMenuManager::strMyAccount, CMenuManager::strOptions, CMenuManager::strGameRules}.contains(
               text.strKey, Qt::CaseInsensitive);
}

TTexts ByKey(const SPoCatalogue &catalogue)
{
    TTexts texts;
    for (const SPoCatalogue::SText &text : catalogue.texts)
        texts.insert(text.GetLookupKey(), text);
    return texts;
}

class CChecker
{
public:
    CChecker(const QVector<SPoCatalogue> &catalogues, const SPoCatalogue &reference, CReport &report)
        : m_catalogues(catalogues)
        , m_reference(reference)
        , m_referenceTexts(ByKey(reference))
        , m_report(report)
    {
    }

    /// Compares the catalogues and returns the number of all keys.
    int Check()
    {
        FindOwners();
        FindMenus();
        for (const SPoCatalogue &catalogue : m_catalogues) {
            for (const SPoCatalogue::SText &text : catalogue.texts)
                CheckText(catalogue, text);
            CheckMissing(catalogue);
            CheckShortcuts(catalogue);
        }
        return static_cast<int>(m_owners.size());
    }

private:
    // Finds a text for each key, in the reference if possible.
    void FindOwners()
    {
        AddOwner(m_reference);
        for (const SPoCatalogue &catalogue : m_catalogues)
            AddOwner(catalogue);
    }

    void AddOwner(const SPoCatalogue &catalogue)
    {
        for (const SPoCatalogue::SText &text : catalogue.texts) {
            if (!m_owners.contains(text.GetLookupKey()))
                m_owners.insert(text.GetLookupKey(), text.GetName() + QLatin1String(" is missing, ") +
                                                         Place(catalogue, text) + QLatin1String(" has it"));
        }
    }

    void CheckText(const SPoCatalogue &catalogue, const SPoCatalogue::SText &text)
    {
        if (text.bFuzzy)
            m_report.Error(catalogue.strFile, text.iLine, text.GetName() + QLatin1String(" is fuzzy"));
        else if (!text.IsTranslated())
            m_report.Error(catalogue.strFile, text.iLine, text.GetName() + QLatin1String(" is not translated"));
        else
            CheckMarkers(catalogue, text);
    }

    void CheckMarkers(const SPoCatalogue &catalogue, const SPoCatalogue::SText &text)
    {
        const SPoCatalogue::SText wanted = m_referenceTexts.value(text.GetLookupKey());
        if (wanted.strText.isEmpty())
            return;
        const auto lost = Markers(wanted.strText) - Markers(text.strText);
        const auto invented = Markers(text.strText) - Markers(wanted.strText);
        const QString there = Place(m_reference, wanted);
        if (!lost.isEmpty())
            m_report.Error(catalogue.strFile, text.iLine,
                           text.GetName() + QLatin1String(" has lost ") + Listed(lost) + QLatin1String(" of ") +
                               there);
        if (!invented.isEmpty())
            m_report.Error(catalogue.strFile, text.iLine,
                           text.GetName() + QLatin1String(" has invented ") + Listed(invented) +
                               QLatin1String(", unknown to ") + there);
    }

    void CheckMissing(const SPoCatalogue &catalogue)
    {
        const TTexts texts = ByKey(catalogue);
        for (auto owner = m_owners.cbegin(); owner != m_owners.cend(); ++owner) {
            if (!texts.contains(owner.key()))
                m_report.Error(catalogue.strFile, 0, owner.value());
        }
    }

    // A comment in one language tells the menu of the text in all of them.
    void FindMenus()
    {
        for (const SPoCatalogue &catalogue : m_catalogues) {
            for (const SPoCatalogue::SText &text : catalogue.texts) {
                QStringList &menus = m_menus[text.GetLookupKey()];
                menus += text.menus;
                if (IsInMenuBar(text))
                    menus.append(MENU_BAR);
                menus.removeDuplicates();
            }
        }
    }

    void CheckShortcuts(const SPoCatalogue &catalogue)
    {
        QHash<QPair<QString, QChar>, const SPoCatalogue::SText *> owners; // by menu and letter
        for (const SPoCatalogue::SText &text : catalogue.texts) {
            const QChar letter = Shortcut(text.strText);
            if (letter.isNull() || !text.IsTranslated())
                continue;
            const QStringList menus = m_menus.value(text.GetLookupKey());
            for (const QString &menu : menus) {
                const SPoCatalogue::SText *&owner = owners[{menu, letter}];
                if (owner)
                    m_report.Error(catalogue.strFile, text.iLine,
                                   text.GetName() + QLatin1String(" has the letter &") + letter +
                                       QLatin1String(" of ") + owner->GetName() + QLatin1String(" in line ") +
                                       QString::number(owner->iLine) + QLatin1String(", which is in the menu ") +
                                       menu);
                else
                    owner = &text;
            }
        }
    }

    const QVector<SPoCatalogue> &m_catalogues;
    const SPoCatalogue &m_reference;
    TTexts m_referenceTexts;
    QMap<QPair<QString, QString>, QString> m_owners;
    QMap<QPair<QString, QString>, QStringList> m_menus; // by the key of the entry
    CReport &m_report;
};

} // namespace

int LanguageCheck::Run(const QString &folder, const QString &reference)
{
    CReport report;
    const auto catalogues = PoCatalogues::ReadFolder(folder, report);
    if (report.HasErrors())
        return report.GetExitCode();
    const auto isReference = [&](const SPoCatalogue &catalogue) {
        return reference.isEmpty() || catalogue.strShort.compare(reference, Qt::CaseInsensitive) == 0;
    };
    const auto found = std::find_if(catalogues.begin(), catalogues.end(), isReference);
    if (found == catalogues.end()) {
        report.Error(folder, 0, QLatin1String("has no language ") + reference);
        return report.GetExitCode();
    }
    const int keys = CChecker(catalogues, *found, report).Check();
    if (!report.HasErrors())
        report.Print(QStringLiteral("%1: %2 languages, %3 texts each, nothing wrong")
                         .arg(folder)
                         .arg(catalogues.size())
                         .arg(keys));
    return report.GetExitCode();
}
