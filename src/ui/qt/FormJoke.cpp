#include "FormJoke.h"

#include "QtText.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace tvx::ui {

FormJoke::FormJoke(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("FormJoke"));
    setModal(true);
    m_lblMessage = new QLabel(this);
    m_lblMessage->setObjectName(QStringLiteral("lblMessage"));
    m_lblMessage->setWordWrap(true);
    m_lblMessage->setTextFormat(Qt::PlainText);
    m_lblMessage->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_cmdClose = new QPushButton(this);
    m_cmdClose->setObjectName(QStringLiteral("cmdClose"));
    m_cmdClose->setDefault(true);

    // One size for the whole script: room for its tallest message and widest button.
    const QFontMetrics metrics = m_lblMessage->fontMetrics();
    int messageHeight = 0;
    int buttonWidth = 0;
    for (const JokeLine& japanese : JokePopup::script()) {
        const JokeLine line = japanese.shown();
        const QRect bounds = metrics.boundingRect(QRect(0, 0, JokePopup::kMessageWidth, 0),
                                                  Qt::TextWordWrap, qtText(line.message));
        messageHeight = std::max(messageHeight, bounds.height());
        m_cmdClose->setText(qtText(line.button));
        buttonWidth = std::max(buttonWidth, m_cmdClose->sizeHint().width());
    }
    m_lblMessage->setFixedSize(JokePopup::kMessageWidth, messageHeight);
    m_cmdClose->setFixedWidth(std::max(buttonWidth, 96));

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_cmdClose);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 16, 16, 12);
    layout->setSpacing(12);
    layout->addWidget(m_lblMessage);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    connect(m_cmdClose, &QPushButton::clicked, this, &FormJoke::reject);
}

void FormJoke::run()
{
    m_popup.open();
    draw();
    exec();
}

void FormJoke::reject()
{
    try {
        if (m_popup.attemptClose())
            QDialog::reject();
        else
            draw();
    } catch (...) {
        QDialog::reject(); // a popup that cannot show its next line lets go
    }
}

void FormJoke::draw()
{
    const JokeLine line = m_popup.current().shown();
    setWindowTitle(qtText(line.caption));
    m_lblMessage->setText(qtText(line.message));
    m_cmdClose->setText(qtText(line.button));
}

} // namespace tvx::ui
