#include "server/Certificados.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>

#include <arpa/inet.h>
#include <fcntl.h>
#include <unistd.h>

#include <openssl/bn.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

namespace cajaplex::servidor {

namespace {

namespace fs = std::filesystem;

constexpr long DiasVigencia = 3650;

struct LiberaX509 {
    void operator()(X509* x) const { X509_free(x); }
};
struct LiberaClave {
    void operator()(EVP_PKEY* k) const { EVP_PKEY_free(k); }
};
struct CierraArchivo {
    void operator()(FILE* f) const { std::fclose(f); }
};
using X509Ptr = std::unique_ptr<X509, LiberaX509>;
using ClavePtr = std::unique_ptr<EVP_PKEY, LiberaClave>;
using ArchivoPtr = std::unique_ptr<FILE, CierraArchivo>;

[[noreturn]] void falla(const std::string& que) {
    throw std::runtime_error(que);
}

std::string huellaSha256(X509* certificado) {
    unsigned char md[EVP_MAX_MD_SIZE];
    unsigned int largo = 0;
    if (!X509_digest(certificado, EVP_sha256(), md, &largo))
        falla("no se pudo calcular la huella del certificado");
    static constexpr char hex[] = "0123456789ABCDEF";
    std::string texto;
    for (unsigned int i = 0; i < largo; ++i) {
        if (i > 0) texto += ':';
        texto += hex[md[i] >> 4];
        texto += hex[md[i] & 0xF];
    }
    return texto;
}

X509Ptr leeCertificado(const std::string& ruta) {
    ArchivoPtr f(std::fopen(ruta.c_str(), "r"));
    if (!f) falla("no se pudo abrir el certificado " + ruta);
    X509Ptr x(PEM_read_X509(f.get(), nullptr, nullptr, nullptr));
    if (!x) falla("el archivo " + ruta + " no es un certificado PEM");
    return x;
}

bool esIP(const std::string& direccion) {
    unsigned char bufer[sizeof(in6_addr)];
    return inet_pton(AF_INET, direccion.c_str(), bufer) == 1 ||
           inet_pton(AF_INET6, direccion.c_str(), bufer) == 1;
}

void agregaExtension(X509* x, int nid, const std::string& valor) {
    X509V3_CTX ctx;
    X509V3_set_ctx_nodb(&ctx);
    X509V3_set_ctx(&ctx, x, x, nullptr, nullptr, 0);
    X509_EXTENSION* ext = X509V3_EXT_conf_nid(nullptr, &ctx, nid, valor.c_str());
    if (!ext) falla("no se pudo armar la extensión del certificado: " + valor);
    X509_add_ext(x, ext, -1);
    X509_EXTENSION_free(ext);
}

// Par nuevo: clave EC P-256 y certificado autofirmado. La clave se escribe con permisos 0600
// desde que se crea el archivo.
void generaPar(const std::string& direccion, const fs::path& certificado, const fs::path& clave) {
    ClavePtr k(EVP_EC_gen("P-256"));
    if (!k) falla("no se pudo generar la clave del certificado");
    X509Ptr x(X509_new());
    X509_set_version(x.get(), 2);
    BIGNUM* serie = BN_new();
    BN_rand(serie, 128, BN_RAND_TOP_ANY, BN_RAND_BOTTOM_ANY);
    BN_to_ASN1_INTEGER(serie, X509_get_serialNumber(x.get()));
    BN_free(serie);
    X509_gmtime_adj(X509_getm_notBefore(x.get()), -3600);
    X509_gmtime_adj(X509_getm_notAfter(x.get()), DiasVigencia * 24 * 3600);
    X509_set_pubkey(x.get(), k.get());
    X509_NAME* nombre = X509_get_subject_name(x.get());
    X509_NAME_add_entry_by_txt(nombre, "O", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>("Cajaplex"), -1, -1, 0);
    X509_NAME_add_entry_by_txt(nombre, "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(direccion.c_str()), -1, -1,
                               0);
    X509_set_issuer_name(x.get(), nombre);
    std::string nombres = "IP:127.0.0.1,DNS:localhost";
    if (direccion != "127.0.0.1" && direccion != "localhost" && direccion != "0.0.0.0" &&
        direccion != "::")
        nombres += (esIP(direccion) ? ",IP:" : ",DNS:") + direccion;
    agregaExtension(x.get(), NID_subject_alt_name, nombres);
    agregaExtension(x.get(), NID_basic_constraints, "critical,CA:FALSE");
    if (!X509_sign(x.get(), k.get(), EVP_sha256())) falla("no se pudo firmar el certificado");

    const int fd = ::open(clave.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0) falla("no se pudo crear " + clave.string());
    ArchivoPtr fClave(::fdopen(fd, "w"));
    if (!fClave) {
        ::close(fd);
        falla("no se pudo crear " + clave.string());
    }
    if (!PEM_write_PrivateKey(fClave.get(), k.get(), nullptr, nullptr, 0, nullptr, nullptr) ||
        std::fflush(fClave.get()) != 0)
        falla("no se pudo escribir " + clave.string());
    ArchivoPtr fCert(std::fopen(certificado.c_str(), "w"));
    if (!fCert || !PEM_write_X509(fCert.get(), x.get()) || std::fflush(fCert.get()) != 0)
        falla("no se pudo escribir " + certificado.string());
}

} // namespace

bool esDireccionLocal(const std::string& direccion) {
    if (direccion == "localhost" || direccion == "::1") return true;
    in_addr ip{};
    return inet_pton(AF_INET, direccion.c_str(), &ip) == 1 && (ntohl(ip.s_addr) >> 24) == 127;
}

CertificadoServicio preparaCertificado(const std::string& carpetaDatos,
                                       const std::string& direccion, const std::string& certificado,
                                       const std::string& clave) {
    CertificadoServicio r{certificado, clave, {}};
    if (certificado.empty() != clave.empty()) falla("--certificado y --clave van juntos");
    if (certificado.empty()) {
        const fs::path carpeta = fs::path(carpetaDatos) / "tls";
        const fs::path rutaCert = carpeta / "certificado.pem";
        const fs::path rutaClave = carpeta / "clave.pem";
        std::error_code ec;
        fs::create_directories(carpeta, ec);
        if (ec) falla("no se pudo crear " + carpeta.string() + ": " + ec.message());
        // Si falta cualquiera de los dos se generan ambos: una clave sin su certificado no sirve.
        if (!fs::exists(rutaCert) || !fs::exists(rutaClave))
            generaPar(direccion, rutaCert, rutaClave);
        r.certificado = rutaCert.string();
        r.clave = rutaClave.string();
    }
    r.huella = huellaSha256(leeCertificado(r.certificado).get());
    return r;
}

} // namespace cajaplex::servidor
