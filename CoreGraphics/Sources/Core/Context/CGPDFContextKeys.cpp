// CGPDFContextKeys.cpp: the keys of what PDF files say of themselves.

#include <CoreFoundation/CFConstantString.h>
#include <CoreGraphics/CGPDFContext.h>

#define DEFINE_KEY(name) CF_CONST_STRING_DECL(name, #name)

DEFINE_KEY(kCGPDFContextMediaBox);
DEFINE_KEY(kCGPDFContextCropBox);
DEFINE_KEY(kCGPDFContextBleedBox);
DEFINE_KEY(kCGPDFContextTrimBox);
DEFINE_KEY(kCGPDFContextArtBox);
DEFINE_KEY(kCGPDFContextTitle);
DEFINE_KEY(kCGPDFContextAuthor);
DEFINE_KEY(kCGPDFContextSubject);
DEFINE_KEY(kCGPDFContextKeywords);
DEFINE_KEY(kCGPDFContextCreator);
DEFINE_KEY(kCGPDFContextOwnerPassword);
DEFINE_KEY(kCGPDFContextUserPassword);
DEFINE_KEY(kCGPDFContextEncryptionKeyLength);
DEFINE_KEY(kCGPDFContextAllowsPrinting);
DEFINE_KEY(kCGPDFContextAllowsCopying);
DEFINE_KEY(kCGPDFContextOutputIntent);
DEFINE_KEY(kCGPDFContextOutputIntents);
DEFINE_KEY(kCGPDFXOutputIntentSubtype);
DEFINE_KEY(kCGPDFXOutputConditionIdentifier);
DEFINE_KEY(kCGPDFXOutputCondition);
DEFINE_KEY(kCGPDFXRegistryName);
DEFINE_KEY(kCGPDFXInfo);
DEFINE_KEY(kCGPDFXDestinationOutputProfile);
