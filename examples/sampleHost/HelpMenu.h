#pragma once

#include "RedirectionLinks.h"

#include <QList>
#include <QMenu>

/// The vendor's pages, which open in the web browser; in an acceptance run they are only logged.
class HelpMenu : public QMenu
{
    Q_OBJECT

public:
    explicit HelpMenu(QWidget* parent = nullptr);

protected:
    void changeEvent(QEvent* event) override;

private:
    struct Page
    {
        CRedirectionLinks::vekLinkType link;
        QAction* action;
        const char* text;
    };

    void addPage(CRedirectionLinks::vekLinkType link, const char* name, const char* text);
    void retranslate();

    QList<Page> m_pages;
};
