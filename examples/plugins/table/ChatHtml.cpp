#include "ChatHtml.h"

#include <models/ChatModel.h>

#include <QUrl>

namespace {

// Returns the longest smiley with which the text begins; empty if there is none.
QString FindSmiley(const QHash<QString, CChatModel::SSmiley> &smileys, QStringView text)
{
    QString longest;
    for (auto smiley = smileys.begin(); smiley != smileys.end(); ++smiley) {
        if (smiley.key().size() > longest.size() && text.startsWith(smiley.key()))
            longest = smiley.key();
    }
    return longest;
}

} // namespace

QString ToHtml(const QString &text)
{
    const auto smileys = CChatModel::GetInstance()->GetSmileyMappings();
    QString html;
    for (QString::size_type i = 0; i < text.size();) {
        const QString smiley = FindSmiley(smileys, QStringView(text).mid(i));
        if (smiley.isEmpty()) {
            html += QString(text.at(i++)).toHtmlEscaped();
            continue;
        }
        const QString file = QUrl::fromLocalFile(smileys.value(smiley).strFile).toString(QUrl::FullyEncoded);
        html += QStringLiteral("<img src=\"%1\">").arg(file.toHtmlEscaped());
        i += smiley.size();
    }
    return html;
}
