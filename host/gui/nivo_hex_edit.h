#ifndef NIVO_HEX_EDIT_H
#define NIVO_HEX_EDIT_H

#include <QLineEdit>

#include <cstdint>

/// A line edit for a hexadecimal number of a given width. It takes up to that many digits of either case,
/// with or without "0x" in front, and may be empty. When the edit is left, or Return pressed, a number gets
/// its full form: "0x", upper case, padded with zeros, and a bare "0x" goes. A text given with setText stands
/// as it is until then.
class NIVO_HEX_EDIT : public QLineEdit
{
    Q_OBJECT
public:
    /// `digits`: 1 to 16.
    explicit NIVO_HEX_EDIT(int digits, QWidget* parent = nullptr);

    int get_digits() const { return m_digits; }
    /// False, and `value` untouched, while the text is no number of this width.
    bool get_value(std::uint64_t& value) const;
    /// Shows the number in its full form. A number that is too wide for the edit shows all its digits.
    void set_value(std::uint64_t value);

private slots:
    void complete_text();

private:
    int m_digits;
};

#endif
