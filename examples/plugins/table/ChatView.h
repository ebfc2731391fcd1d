#pragma once

#include <common/TableProtocol.h>

#include <QTextBrowser>

/// What is said at a table. A smiley of CChatModel stands as its picture; whatever else people type is text and
/// nothing more.
class CChatView : public QTextBrowser
{
    Q_OBJECT

public:
    explicit CChatView(QWidget *parent);

    void AddLine(const TableProtocol::SLine &line);
};
