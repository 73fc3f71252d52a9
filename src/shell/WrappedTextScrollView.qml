import QtQuick
import QtQuick.Controls

// A scroll view around text that wraps: it scrolls up and down only, and its scroll bar is
// named for assistive technology after what it scrolls.
ScrollView {
    required property string scrolledName

    ScrollBar.horizontal.policy: ScrollBar.AlwaysOff
    ScrollBar.vertical.Accessible.name: scrolledName
}
