#include "shared/ocr/rest/awssignature.h"

#include <QCryptographicHash>
#include <QMessageAuthenticationCode>

namespace Tamrix::OCR::Rekognition {

namespace {

QByteArray hexHash(const QByteArray& bytes) {
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}

QByteArray hmac(const QByteArray& key, const QByteArray& message) {
    return QMessageAuthenticationCode::hash(message, key, QCryptographicHash::Sha256);
}

}  // namespace

QByteArray authorization(const SignedRequest& request) {
    const QByteArray canonicalHeaders =
        QByteArray("content-type:") + content_type + "\nhost:" + request.host +
        "\nx-amz-date:" + request.amzDate + "\nx-amz-target:" + amz_target + '\n';
    const QByteArray dateStamp = request.amzDate.left(8);
    // 1. The canonical request.
    const QByteArray canonicalRequest =
        "POST\n/\n\n" + canonicalHeaders + '\n' + signed_headers + '\n' + hexHash(request.payload);
    // 2. The credential scope.
    const QByteArray scope = dateStamp + '/' + request.region + '/' + service + "/aws4_request";
    // 3. The string to sign.
    const QByteArray stringToSign = QByteArray(algorithm) + '\n' + request.amzDate + '\n' + scope +
                                    '\n' + hexHash(canonicalRequest);
    // 4. The signing key and the signature.
    QByteArray key = "AWS4" + request.secretKey;
    for (const QByteArray& part :
         {dateStamp, request.region, QByteArray(service), QByteArray("aws4_request")})
        key = hmac(key, part);
    const QByteArray signature = hmac(key, stringToSign).toHex();
    // 5.
    return QByteArray(algorithm) + " Credential=" + request.keyId + '/' + scope +
           ", SignedHeaders=" + signed_headers + ", Signature=" + signature;
}

}  // namespace Tamrix::OCR::Rekognition
