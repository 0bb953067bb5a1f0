#include "nivo_hex_edit.h"

#include "msg_internal_error.h"

#include <QRegularExpressionValidator>

#include <charconv>

NIVO_HEX_EDIT::NIVO_HEX_EDIT(int digits, QWidget* parent) : QLineEdit(parent), m_digits(digits)
{
    VEK_ASSERT_TEXT(digits >= 1 && digits <= 16, "digits >= 1 && digits <= 16");
    const QString pattern = QStringLiteral("(0[xX])?[0-9a-fA-F]{0,%1}").arg(digits);
    setValidator(new QRegularExpressionValidator(QRegularExpression(pattern), this));
    connect(this, SIGNAL(editingFinished()), this, SLOT(complete_text()));
}

bool NIVO_HEX_EDIT::get_value(std::uint64_t& value) const
{
    if (!hasAcceptableInput()) {
        return false;
    }
    QByteArray number = text().toLatin1();
    if (number.startsWith("0x") || number.startsWith("0X")) {
        number.remove(0, 2);
    }
    std::uint64_t parsed = 0;
    const char* const end = number.constData() + number.size();
    const std::from_chars_result result = std::from_chars(number.constData(), end, parsed, 16);
    if (result.ec != std::errc() || result.ptr != end) {
        return false;
    }
    value = parsed;
    return true;
}

void NIVO_HEX_EDIT::set_value(std::uint64_t value)
{
    const QString number = QString::number(static_cast<qulonglong>(value), 16).toUpper();
    setText(QStringLiteral("0x") + number.rightJustified(m_digits, QLatin1Char('0')));
}

void NIVO_HEX_EDIT::complete_text()
{
    std::uint64_t value = 0;
    if (get_value(value)) {
        set_value(value);
    } else if (hasAcceptableInput()) {
        clear(); // a bare "0x", which is no number
    }
}
