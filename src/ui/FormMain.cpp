#include "FormMain.h"

#include "QtText.h"

#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace tvx::ui {

FormMain::FormMain(std::string_view title, QWidget* parent) : QMainWindow(parent)
{
    setObjectName(QStringLiteral("FormMain"));
    setWindowTitle(qtText(title));
    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    m_txtLog = new QPlainTextEdit(central);
    m_txtLog->setObjectName(QStringLiteral("txtLog"));
    m_txtLog->setReadOnly(true);
    layout->addWidget(m_txtLog);
    setCentralWidget(central);
    resize(640, 480);
}

} // namespace tvx::ui
