// Internal errors: every failed check of the library ends here, in the process's handler.
#include <zarnxml/zyassert.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace {

// "origen:linea: condicion (mensaje)" on standard error, then abort().
[[noreturn]] void escribe_y_aborta(const char *condicion, const char *origen, uint32_t linea,
                                   const char *mensaje) {
    std::fprintf(stderr, "%s:%lu: %s", origen ? origen : "?", static_cast<unsigned long>(linea),
                 condicion ? condicion : "default error");
    if (mensaje)
        std::fprintf(stderr, " (%s)", mensaje);
    std::fputc('\n', stderr);
    std::fflush(stderr);
    std::abort();
}

void manejador_por_defecto(const char *condicion, const char *origen, uint32_t linea,
                           const char *mensaje) {
    escribe_y_aborta(condicion, origen, linea, mensaje);
}

// Read from any thread; installed rarely.
std::atomic<zyassert_manejador_t> manejador{manejador_por_defecto};

// The calling thread's own handler, if it has one; it goes before the process's. Set and read
// on every call of the C++ interface, hence the cheapest TLS model.
thread_local zyassert_manejador_t manejador_hilo [[gnu::tls_model("initial-exec")]] = nullptr;

[[noreturn]] void llama(const char *condicion, const char *origen, uint32_t linea,
                        const char *mensaje) {
    if (const zyassert_manejador_t propio = manejador_hilo)
        propio(condicion, origen, linea, mensaje);
    else
        manejador.load(std::memory_order_acquire)(condicion, origen, linea, mensaje);
    // A handler that returns leaves the library nowhere to go: the error is told as the default
    // handler tells it, and the process ends.
    escribe_y_aborta(condicion, origen, linea, mensaje);
}

} // namespace

extern "C" {

ZARN_API zyassert_manejador_t zyassert_instala_manejador(zyassert_manejador_t nuevo) {
    return manejador.exchange(nuevo ? nuevo : manejador_por_defecto, std::memory_order_acq_rel);
}

ZARN_API zyassert_manejador_t zyassert_instala_manejador_hilo(zyassert_manejador_t nuevo) {
    const zyassert_manejador_t antes = manejador_hilo;
    manejador_hilo = nuevo;
    return antes;
}

ZARN_API void error_interno(const char *condicion, const char *origen, uint32_t linea, int) {
    llama(condicion, origen, linea, nullptr);
}

ZARN_API void error_interno_msg(const char *condicion, const char *origen, uint32_t linea,
                                const char *mensaje, int) {
    llama(condicion, origen, linea, mensaje);
}

ZARN_API void error_interno_default_error(const void *, const void *, const char *origen,
                                          uint32_t linea, int) {
    llama(nullptr, origen, linea, nullptr);
}
}
