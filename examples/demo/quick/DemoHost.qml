// The Qt Quick demo host's window, the size of a phone screen, with the same content as the Qt
// Widgets demo's: who is signed in, what the experience handed over to the host, and buttons that
// show the experiences again (their object names let the autoplay walk find them).
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

Window {
    id: hostWindow

    required property QtObject host

    title: "Brightday"
    width: 375
    height: 667
    minimumWidth: width
    maximumWidth: width
    minimumHeight: height
    maximumHeight: height
    visible: true
    color: palette.window

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 16

        Label {
            Layout.fillWidth: true
            text: "<h2>Brightday</h2>A host application with Ostrel " + hostWindow.host.ostrelVersion
            textFormat: Text.StyledText
            wrapMode: Text.Wrap
        }
        Label {
            Layout.fillWidth: true
            text: hostWindow.host.signedInUser
            textFormat: Text.StyledText
            wrapMode: Text.Wrap
        }
        Label {
            text: "Handed over to the host:"
        }
        ScrollView {
            Layout.fillWidth: true
            Layout.fillHeight: true

            TextArea {
                readOnly: true
                wrapMode: TextEdit.Wrap
                text: hostWindow.host.handOverLog
                placeholderText: "What the experience hands over to the host appears here."
                onTextChanged: cursorPosition = length
                background: Rectangle {
                    color: palette.base
                    border.color: palette.mid
                }
            }
        }
        Button {
            objectName: "showAutomatic"
            Layout.fillWidth: true
            text: "Show the automatic experience"
            onClicked: hostWindow.host.showAutomaticExperience()
        }
        Button {
            objectName: "showSignUp"
            Layout.fillWidth: true
            text: "Sign up"
            onClicked: hostWindow.host.showSignUp()
        }
        Button {
            objectName: "showLogIn"
            Layout.fillWidth: true
            text: "Log in"
            onClicked: hostWindow.host.showLogIn()
        }
        Button {
            objectName: "logOut"
            Layout.fillWidth: true
            text: "Log out"
            onClicked: hostWindow.host.logOut()
        }
    }
}
