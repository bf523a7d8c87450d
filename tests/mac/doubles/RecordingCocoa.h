#pragma once

#import VEK_COCOA_DECLARATIONS

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

class QMenu;
class QWidget;

/// Objects in the place of Cocoa's, which write down what they are told, and functions in the place
/// of CoreFoundation's and CoreGraphics', which also count what they gave out. GUI thread.

/// Takes part in what it records: "window 1 setLevel: 8".
@interface RecordingObject : NSObject {
    NSString* m_name;
}
- (id)initWithName:(NSString*)name;
/// What it is called in the records.
- (NSString*)name;
@end

@interface RecordingButton : RecordingObject
- (void)setEnabled:(BOOL)enabled;
@end

@interface RecordingScreen : RecordingObject {
@public
    NSDictionary* description; ///< retained
}
- (NSDictionary*)deviceDescription;
@end

@interface RecordingWindow : RecordingObject {
@public
    NSUInteger mask;
    NSUInteger behavior;
    RecordingButton* closeButton; ///< not retained, as are all of these
    RecordingScreen* ownScreen;
}
@end

/// What a window handle points at.
@interface RecordingView : NSObject {
@public
    RecordingWindow* ownWindow; ///< not retained; nil for a view in no window
}
- (NSWindow*)window;
- (unsigned long long)windowId;
@end

@interface RecordingMenuItem : RecordingObject
- (void)setEnabled:(BOOL)enabled;
@end

@interface RecordingMenu : RecordingObject {
@public
    NSArray* items; ///< not retained
}
- (NSArray*)itemArray;
- (void)cancelTracking;
@end

/// Not retained.
struct DistributedListener
{
    id observer;
    SEL selector;
    NSString* name;
};

/// What the doubles answer, and what they were asked for.
struct RecordingCocoa
{
    static RecordingCocoa& instance();
    /// As it is at the beginning; what was given out and not released stays counted.
    void clear();
    QStringList takeCalls();
    void record(const QString& call) { calls << call; }

    QStringList calls;

    bool applicationActive = false;
    RecordingMenu* mainMenu = nil;
    QHash<const QMenu*, RecordingMenu*> menus;
    /// What QWidget::winId() gives. A widget that isn't here gets a view in a window that records
    /// nothing, or no view at all.
    QHash<const QWidget*, RecordingView*> views;
    bool widgetsHaveViews = true;

    RecordingScreen* mainScreen = nil;
    QHash<unsigned, NSSize> displaySizes; ///< in millimetres
    NSArray* launchedApplications = nil; ///< retained
    QHash<int, QByteArray> executables; ///< by process; the others are asked of the system
    std::optional<int> executableResult; ///< instead of the length of the path
    std::optional<QString> versionString; ///< nothing: the real one

    bool hasSession = true;
    NSString* sessionUser = nil; ///< retained; nil: the session has no such entry

    NSURL* trash = nil; ///< retained
    bool scriptSucceeds = true;
    bool scriptCompiles = true;
    NSDate* creationDate = nil; ///< of each file there is; retained; nil: the real one
    bool calendarSplits = true;

    QString uncreatableString; ///< CFStringCreateWithCharacters() gives none of this text

    bool distribute = false; ///< distributed notifications go through the real centre
    QVector<DistributedListener> distributedListeners; ///< if they don't
};

/// Tells those who listen, in the place of the real centre; their number.
int notifyDistributed(NSString* name, NSString* object);

/// Objects of CoreFoundation that were given out and aren't released; each release of something
/// else stands in the records.
int liveCoreObjects();

/// Objects of any class that were made since the first call and are still there, also those that
/// wait in a pool.
int liveObjects();

/// What the library has put into the notification centre's hands and not destroyed, the oldest
/// first; not retained. Their end is recorded, when it comes to the root class.
QList<id> liveObservers();
