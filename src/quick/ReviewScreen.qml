import QtQuick
import VextilToolkit

// The review: the captured images playing in their frame, the question and the two answers,
// which act as the finger lands. Its images come fresh from the store on every appearance.
FocusScope {
    id: screen
    property alias review: review
    readonly property Item photoBorder: border
    signal answered(bool accepted)

    ReviewModel { id: review }

    Rectangle { anchors.fill: parent; color: "white" }

    Item {
        id: region
        readonly property rect area: PortraitLayout.region(screen.width, screen.height)
        x: area.x; y: area.y; width: area.width; height: area.height
        // The screen's landmark sits on a plain item: a focus scope claims the focus with its
        // focused child, and a reader must hear one focused object at a time.
        Accessible.role: Accessible.Pane
        Accessible.name: review.title

        NavigationBar {
            id: bar
            width: region.width
            height: region.height * 0.1
            title: review.title
            titleColor: Theme.navigationTitle
            backColor: Theme.backButton
            onBackPressed: screen.answer(false)
        }
        Item {
            id: content
            y: bar.height
            width: region.width
            height: region.height * 0.9
            Rectangle { anchors.fill: parent; color: Theme.background }

            ActionButton {
                id: cancel
                width: content.width * 0.7
                height: content.height * 0.07
                x: (content.width - width) / 2
                y: content.height - 25 - height
                text: review.cancelText
                description: review.message
                iconName: "reload_icon"
                titleColor: Theme.cancelButtonTint
                background: Theme.cancelButtonBackground
                onPressed: screen.answer(false)
            }
            ActionButton {
                id: accept
                width: content.width * 0.7
                height: content.height * 0.07
                x: (content.width - width) / 2
                y: cancel.y - 15 - height
                text: review.acceptText
                description: review.message
                bold: true
                titleColor: Theme.buttonTint
                background: Theme.buttonBackground
                focus: true  // keyboard users start on the answer most of them give
                onPressed: screen.answer(true)
            }
            Text {
                id: question
                text: review.message
                color: Theme.confirmQuestionText
                font.pixelSize: 18
                wrapMode: Text.WordWrap
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
                width: content.width * 0.7
                x: (content.width - width) / 2
                y: photo.y + photo.height + 15
                height: accept.y - 15 - y
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            ReviewPhoto {
                id: photo
                review: review
                x: (content.width - width) / 2
                y: 15
                width: content.width * 0.75
                // 60% of the height, or less on a short screen, where the question would
                // otherwise have no room left.
                height: Math.max(0, Math.min(content.height * 0.6, accept.y - 15 - question.implicitHeight - 15 - 15))
                Accessible.role: Accessible.Graphic
                Accessible.name: qsTranslate("VextilToolkit", "Captured photo")
            }
        }
    }
    // The frame round the photo; it follows the photo when the window changes shape.
    Rectangle {
        id: border
        color: "transparent"
        border.color: Theme.buttonBackground
        border.width: 2
        radius: 5
        Accessible.ignored: true
    }
    function placeBorder() {
        if (photo.width <= 0 || photo.height <= 0)
            return
        const at = photo.mapToItem(screen, 0, 0)
        border.x = at.x - 5; border.y = at.y - 5
        border.width = photo.width + 10; border.height = photo.height + 10
    }
    // Once every binding of a new shape has settled.
    function placeBorderLater() { Qt.callLater(placeBorder) }
    onWidthChanged: placeBorderLater()
    onHeightChanged: placeBorderLater()
    Connections {
        target: photo
        function onXChanged() { screen.placeBorderLater() }
        function onYChanged() { screen.placeBorderLater() }
        function onWidthChanged() { screen.placeBorderLater() }
        function onHeightChanged() { screen.placeBorderLater() }
    }

    property bool answering: false
    function answer(accepted) {
        if (answering)
            return  // a second tap while the first is handled
        answering = true
        if (!accepted)
            review.discard()
        screen.answered(accepted)
    }
    // Fresh images and a fresh answer on every appearance.
    function arrive() {
        answering = false
        review.load()
        placeBorder()
        accept.forceActiveFocus()
    }
}
