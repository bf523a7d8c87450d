#pragma once

#include <QProcess>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QTest>
#include <QWidget>

#include <xcb/xcb.h>

#include <cstdlib>

/// \file
/// Windows as the X server and the other programs on it see them. Whoever includes it links xcb.

/// What a program of the X server's says.
inline QString output(const char* program, const QStringList& arguments)
{
    QProcess process;
    process.start(QString::fromLatin1(program), arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        return QStringLiteral("%1 failed").arg(QLatin1String(program));
    return QString::fromLocal8Bit(process.readAllStandardOutput());
}

inline QString windowArgument(WId window)
{
    return QStringLiteral("0x%1").arg(window, 0, 16);
}

inline QString windowProperty(WId window, const char* name)
{
    return output("xprop", {QStringLiteral("-id"), windowArgument(window), QLatin1String(name)});
}

/// Whether the window manager keeps that state, such as "ABOVE", for a window.
inline bool hasState(WId window, const char* state)
{
    const QRegularExpression word(
        QStringLiteral("\\b_NET_WM_STATE_%1\\b").arg(QLatin1String(state)));
    return windowProperty(window, "_NET_WM_STATE").contains(word);
}

inline bool isAbove(WId window)
{
    return hasState(window, "ABOVE");
}

/// "IsViewable", "IsUnMapped" or "IsUnviewable".
inline QString mapState(WId window)
{
    const QString text = output(
        "xwininfo", {QStringLiteral("-id"), windowArgument(window), QStringLiteral("-stats")});
    const QRegularExpression state(QStringLiteral("Map State: (\\w+)"));
    return state.match(text).captured(1);
}

/// "Normal", "Iconic" or "Withdrawn" for a window that the window manager has seen.
inline QString managerState(WId window)
{
    const QRegularExpression state(QStringLiteral("window state: (\\w+)"));
    return state.match(windowProperty(window, "WM_STATE")).captured(1);
}

inline bool isManaged(const QWidget& widget)
{
    const QString list =
        output("xprop", {QStringLiteral("-root"), QStringLiteral("_NET_CLIENT_LIST")});
    return list.split(QRegularExpression(QStringLiteral("[ ,\n]+")))
        .contains(windowArgument(widget.internalWinId()));
}

inline QList<WId> rootWindowList(const char* name)
{
    const QString list = output("xprop", {QStringLiteral("-root"), QLatin1String(name)});
    QList<WId> windows;
    const QRegularExpression number(QStringLiteral("0x([0-9a-f]+)"));
    for (auto i = number.globalMatch(list); i.hasNext();)
        windows << i.next().captured(1).toULongLong(nullptr, 16);
    return windows;
}

/// All managed windows from the lowest to the highest.
inline QList<WId> stacking()
{
    return rootWindowList("_NET_CLIENT_LIST_STACKING");
}

/// The window that the window manager has given the focus to, or 0.
inline WId focusedWindow()
{
    return rootWindowList("_NET_ACTIVE_WINDOW").value(0);
}

/// The functions that the window asks its manager for, or -1.
inline int motifFunctions(WId window)
{
    const QRegularExpression hints(QStringLiteral("= 0x[0-9a-f]+, 0x([0-9a-f]+),"));
    const auto match = hints.match(windowProperty(window, "_MOTIF_WM_HINTS"));
    return match.hasMatch() ? match.captured(1).toInt(nullptr, 16) : -1;
}

/// Whether the window asks for a close button; a window that says nothing of functions does.
inline bool hasCloseFunction(WId window)
{
    constexpr int allFunctions = 1;
    constexpr int closeFunction = 0x20;
    const int functions = motifFunctions(window);
    return (functions & (allFunctions | closeFunction)) != 0;
}

/// Sends the window manager the requests that a taskbar sends, on a connection of its own.
class Taskbar
{
public:
    Taskbar()
        : m_connection(xcb_connect(nullptr, nullptr))
    {}
    ~Taskbar() { xcb_disconnect(m_connection); }

    void requestClose(WId window) { send(window, "_NET_CLOSE_WINDOW", 0, fromTaskbar); }
    void requestFocus(WId window) { send(window, "_NET_ACTIVE_WINDOW", fromTaskbar); }
    void requestMinimizing(WId window)
    {
        constexpr quint32 iconic = 3;
        send(window, "WM_CHANGE_STATE", iconic);
    }
    /// \a state is "BELOW", for instance.
    void requestState(WId window, const char* state, bool add)
    {
        send(window, "_NET_WM_STATE", add, atom(QByteArray("_NET_WM_STATE_") + state));
    }

private:
    Q_DISABLE_COPY(Taskbar)

    static constexpr quint32 fromTaskbar = 2;

    xcb_atom_t atom(const QByteArray& name)
    {
        const auto cookie =
            xcb_intern_atom(m_connection, false, quint16(name.size()), name.constData());
        xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(m_connection, cookie, nullptr);
        const xcb_atom_t value = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
        std::free(reply);
        return value;
    }

    void send(WId window, const char* type, quint32 first, quint32 second = 0)
    {
        xcb_client_message_event_t event = {};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = xcb_window_t(window);
        event.type = atom(type);
        event.data.data32[0] = first;
        event.data.data32[1] = second;
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        xcb_send_event(m_connection, false, screen->root,
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&event));
        // A server drops what it hasn't read of a connection that is closed.
        const auto sync = xcb_get_input_focus(m_connection);
        std::free(xcb_get_input_focus_reply(m_connection, sync, nullptr));
    }

    xcb_connection_t* const m_connection;
};

/// Sees who asks the window manager to give the focus to a window, from its construction on.
class FocusRequests
{
public:
    explicit FocusRequests(WId window)
        : m_window(window)
        , m_connection(xcb_connect(nullptr, nullptr))
    {
        const QByteArray name("_NET_ACTIVE_WINDOW");
        const auto cookie =
            xcb_intern_atom(m_connection, false, quint16(name.size()), name.constData());
        const quint32 events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        xcb_change_window_attributes(m_connection, screen->root, XCB_CW_EVENT_MASK, &events);
        // The answer comes when the selection above holds.
        const auto sync = xcb_get_input_focus(m_connection);
        std::free(xcb_get_input_focus_reply(m_connection, sync, nullptr));
        xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(m_connection, cookie, nullptr);
        m_type = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
        std::free(reply);
    }
    ~FocusRequests() { xcb_disconnect(m_connection); }

    static constexpr quint32 fromTaskbar = 2; ///< which a window manager always obeys

    /// In whose names it was asked until now.
    QList<quint32> sources()
    {
        while (xcb_generic_event_t* event = xcb_poll_for_event(m_connection)) {
            const auto* message = reinterpret_cast<const xcb_client_message_event_t*>(event);
            if ((event->response_type & 0x7f) == XCB_CLIENT_MESSAGE && message->type == m_type
                && message->window == m_window)
                m_sources << message->data.data32[0];
            std::free(event);
        }
        return m_sources;
    }

private:
    Q_DISABLE_COPY(FocusRequests)

    const WId m_window;
    xcb_connection_t* const m_connection;
    xcb_atom_t m_type = XCB_ATOM_NONE;
    QList<quint32> m_sources;
};

/// A window that counts how often it has been hidden.
class PlainWindow : public QWidget
{
public:
    explicit PlainWindow(const QRect& geometry = QRect(100, 100, 200, 100),
                         Qt::WindowFlags flags = Qt::WindowFlags())
        : QWidget(nullptr, flags)
    {
        setGeometry(geometry);
    }

    /// Shows it and waits until the window manager has taken it over.
    bool showManaged()
    {
        show();
        return QTest::qWaitForWindowExposed(this)
            && QTest::qWaitFor([this] { return isManaged(*this); }, 10000);
    }

    int hides = 0;

protected:
    void hideEvent(QHideEvent*) override { ++hides; }
};
