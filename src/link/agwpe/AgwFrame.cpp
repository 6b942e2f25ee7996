#include "link/agwpe/AgwFrame.h"

#include <QtEndian>

#include <algorithm>

namespace {

void Put(QByteArray& target, qsizetype offset, qsizetype length, QByteArrayView text) {
    std::copy_n(text.data(), std::min(length, text.size()), target.data() + offset);
}

} // namespace

QByteArray AgwFrame::ToBytes() const {
    QByteArray bytes(headerLength, '\0');
    bytes[0] = static_cast<char>(port);
    bytes[4] = kind;
    bytes[6] = static_cast<char>(pid);
    // The last byte of a call field stays NUL.
    Put(bytes, 8, callFieldLength - 1, callFrom);
    Put(bytes, 18, callFieldLength - 1, callTo);
    qToLittleEndian(static_cast<quint32>(data.size()), bytes.data() + 28);
    bytes.append(data);
    return bytes;
}

namespace AgwData {

QByteArray LogIn(QByteArrayView loginId, QByteArrayView password) {
    QByteArray data(2 * logInFieldLength, '\0');
    Put(data, 0, logInFieldLength, loginId);
    Put(data, logInFieldLength, logInFieldLength, password);
    return data;
}

QByteArray Via(const QByteArrayList& digipeaters, QByteArrayView information) {
    QByteArray data(1 + digipeaters.size() * AgwFrame::callFieldLength, '\0');
    data[0] = static_cast<char>(digipeaters.size());
    qsizetype offset = 1;
    for (const QByteArray& digipeater : digipeaters) {
        Put(data, offset, AgwFrame::callFieldLength - 1, digipeater);
        offset += AgwFrame::callFieldLength;
    }
    data.append(information);
    return data;
}

QByteArrayView WithoutEndMark(QByteArrayView data) {
    return data.endsWith('\0') ? data.chopped(1) : data;
}

QByteArrayView UpToNul(QByteArrayView field) {
    const auto* end = std::find(field.begin(), field.end(), '\0');
    return field.first(end - field.begin());
}

} // namespace AgwData
