#include "module/config/ont_reconfigure.h"

#include "module/store/cached_query.h"
#include "wire/records/ont.h"

using namespace tarn;

int reconfigure_ont(int slot, const std::uint8_t *serial) {
    Request<45> request(command::reconfigure_ont, destination::services);
    request.put_bytes(32, serial, serial_size);
    return act(request, __func__, slot);
}
