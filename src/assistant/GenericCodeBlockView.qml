import QtQuick
import Varnholt

// Code of another language than SQL in a reply: shown and copied, never applied.
CodeBlockFrame {
    required property string language

    label: language.toUpperCase()
}
