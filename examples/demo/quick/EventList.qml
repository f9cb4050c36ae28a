// The Qt Quick demo host's second window: the SDK's events as they fire (EventListModel), with the
// same columns as the Qt Widgets demo's event panel; the newest at the bottom.
import QtQuick
import QtQuick.Controls

Window {
    id: eventWindow

    required property var events

    title: "Ostrel events"
    width: 640
    height: 667
    visible: true
    color: palette.base

    ListView {
        id: eventList

        readonly property var columnWidths: [96, 150, 130]

        anchors.fill: parent
        clip: true
        model: eventWindow.events
        headerPositioning: ListView.OverlayHeader
        onCountChanged: positionViewAtEnd()

        header: Rectangle {
            width: eventList.width
            height: headerRow.implicitHeight + 8
            z: 2
            color: palette.button

            Row {
                id: headerRow
                x: 4
                anchors.verticalCenter: parent.verticalCenter
                spacing: 8

                Repeater {
                    model: ["Time", "Event", "Type", "Details"]

                    Label {
                        required property int index
                        required property string modelData

                        width: eventList.columnWidths[index] ?? implicitWidth
                        text: modelData
                        font.bold: true
                    }
                }
            }
        }
        delegate: Rectangle {
            required property int index
            required property string time
            required property string name
            required property string type
            required property string details

            width: eventList.width
            height: row.implicitHeight + 4
            color: index % 2 ? palette.alternateBase : palette.base

            Row {
                id: row
                x: 4
                anchors.verticalCenter: parent.verticalCenter
                spacing: 8

                Label { width: eventList.columnWidths[0]; text: time; elide: Text.ElideRight }
                Label { width: eventList.columnWidths[1]; text: name; elide: Text.ElideRight }
                Label { width: eventList.columnWidths[2]; text: type; elide: Text.ElideRight }
                Label { text: details }
            }
        }
    }
}
