#pragma once

// Where the services are. Users reach other ones by their file "ocr.ini".

namespace Tamrix::OCR {

inline constexpr const char* ocrSpaceEndpoint = "https://api.ocr.space/parse/image";
/// Of the provider of Rekognition; service and region stand in front.
inline constexpr const char* rekognitionDomain = "amazonaws.com";
inline constexpr const char* rekognitionRegion = "eu-west-1";

}  // namespace Tamrix::OCR
