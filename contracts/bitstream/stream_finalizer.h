#ifndef STREAM_FINALIZER_H
#define STREAM_FINALIZER_H

#include "byte_source.h"
#include "stream_key.h"
#include "stream_signer.h"

#include <memory>
#include <string>

/// Completes a configuration stream whose encryption was left for later: every image that is prepared is
/// encrypted with the key and then signed, images that are not stay as they are. The result has the very
/// bytes that a stream has that was encrypted and signed when it was made.
///
/// The stream is verified on the way; what is encrypted lies in a spool file in `spool_directory`. Null with
/// a whole sentence in `message` when the stream is damaged or has no image that is prepared.
std::shared_ptr<const BYTE_SOURCE> finalize_stream(const BYTE_SOURCE& prepared, const STREAM_KEY& key,
                                                   const STREAM_SIGNER& signer,
                                                   const std::string& spool_directory, std::string& message);

#endif
