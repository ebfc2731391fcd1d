#include "ChatView.h"

#include <models/ChatModel.h>

#include <QUrl>

namespace {

constexpr int MAX_LINES = 500;

// The longest smiley that the text begins with; empty if there is none.
QString FindSmiley(const QHash<QString, CChatModel::SSmiley> &smileys, const QStringRef &text)
{
    QString longest;
    for (auto smiley = smileys.begin(); smiley != smileys.end(); ++smiley) {
        if (smiley.key().size() > longest.size() && text.startsWith(smiley.key()))
            longest = smiley.key();
    }
    return longest;
}

QString ToHtml(const QString &text)
{
    const auto smileys = CChatModel::GetInstance()->GetSmileyMappings();
    QString html;
    for (int i = 0; i < text.size();) {
        const QString smiley = FindSmiley(smileys, text.midRef(i));
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

} // namespace

CChatView::CChatView(QWidget *parent)
    : QTextBrowser(parent)
{
    document()->setMaximumBlockCount(MAX_LINES);
    setFocusPolicy(Qt::ClickFocus); // the keyboard is for the line below
}

void CChatView::AddLine(const TableProtocol::SLine &line)
{
    append(QStringLiteral("<b>%1:</b> ").arg(line.strNickname.toHtmlEscaped()) + ToHtml(line.strText));
}
