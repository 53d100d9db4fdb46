#pragma once

#include <QByteArray>

#include "base/export.h"

namespace Tamrix::OCR::Rekognition {

inline constexpr const char* content_type = "application/x-amz-json-1.1";
inline constexpr const char* signed_headers = "content-type;host;x-amz-date;x-amz-target";
inline constexpr const char* amz_target = "RekognitionService.DetectText";
inline constexpr const char* algorithm = "AWS4-HMAC-SHA256";
inline constexpr const char* service = "rekognition";

/// What is signed of a request, and with which key.
struct SignedRequest {
    QByteArray keyId;
    QByteArray secretKey;
    QByteArray region;
    QByteArray host;
    /// UTC, as yyyyMMddTHHmmssZ.
    QByteArray amzDate;
    QByteArray payload;
};

/// The value of the header "Authorization", by the AWS Signature Version 4.
TAMRIX_EXPORT QByteArray authorization(const SignedRequest& request);

}  // namespace Tamrix::OCR::Rekognition
