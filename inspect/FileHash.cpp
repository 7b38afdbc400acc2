#include "inspect/FileHash.h"

#include <QFile>

#include <memory>
#include <openssl/evp.h>

namespace inspect
{

namespace
{

// Qt's own hash takes several times as long, longer than loading an image.
QByteArray hash(const QString& path)
{
    constexpr int block_size = 256 * 1024;
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(),
                                                                          EVP_MD_CTX_free);
    QFile file(path);
    if (!context || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1 ||
        !file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        return {};
    }
    QByteArray block(block_size, '\0');
    qint64 count = 0;
    while ((count = file.read(block.data(), block.size())) > 0) {
        EVP_DigestUpdate(context.get(), block.constData(), static_cast<std::size_t>(count));
    }
    QByteArray digest(EVP_MAX_MD_SIZE, '\0');
    unsigned int length = 0;
    EVP_DigestFinal_ex(context.get(), reinterpret_cast<unsigned char*>(digest.data()), &length);
    return count < 0 ? QByteArray() : digest.left(static_cast<int>(length));
}

} // namespace

std::future<QByteArray> sha256_of(const QString& path)
{
    return std::async(std::launch::async, hash, path);
}

} // namespace inspect
