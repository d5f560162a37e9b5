/**
 * What one engine keeps, and its turns with the globals of the core.
 *
 * The core works on globals (common/setup.h, error/error.h). A Turn holds the engine's lock, puts
 * one session's context into them and, when it ends, gives them back as they were, so that
 * engines of this library and sessions of the native methods can take turns in one process.
 */
#ifndef TARNEX_API_SESSION_H
#define TARNEX_API_SESSION_H

#include "common/engine_lock.h"
#include "common/setup.h"
#include "database/books/network.h"
#include "error/error.h"

#include <tarnex/engine.h>

#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace tarnex::inside
{

/** Everything that belongs to one engine. */
struct Session {
    explicit Session(const Options &wanted);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    /** The backups of a primary, along its path. */
    std::span<const LspId> backupsOf(LspId primary) const;
    /** A stored LSP in full. */
    Lsp lspOf(const DBLabelSwitchedPath &record) const;
    /** The id for an LSP that is to come: the wanted one, which must be free, or the next. */
    LspId idFor(LspId wanted) const;
    /** Checks that the ids of LSPs that are to come are free and named once, and that either all
     * are named or none is. */
    void checkIds(std::span<const Request> requests) const;
    /** Makes room to remember LSPs with ids below `end`. */
    void makeRoom(std::int64_t end);
    /** Makes room to remember so many more backups of a primary. */
    void makeRoomForBackups(LspId primary, std::size_t count);
    /** Notes an LSP that has been stored; room has been made for it. */
    void remember(const Lsp &lsp);
    /** Notes that an LSP has gone. */
    void forget(const Lsp &lsp);

    const Options options;
    DataBase *db = nullptr;
    ErrorList trail{}; ///< messages of the last call that changes or computes something
    std::size_t nbLsps = 0;

private:
    std::size_t placeOf(const Lsp &backup) const;

    std::unordered_map<LspId, std::vector<LspId>> backups; ///< by primary, along its path
    std::vector<std::uint8_t> classTypes; ///< by LSP id; the core does not keep that of bandwidth 0
    std::int64_t nextId = 0;              ///< one more than the largest ever used
};

/** One call's turn with the globals; the session's trail starts empty. */
class Turn
{
public:
    explicit Turn(Session &owner);
    ~Turn();
    Turn(const Turn &) = delete;
    Turn &operator=(const Turn &) = delete;

    /** Sets the configuration for a primary. Weights and prices are those of its own class type,
     * and prices count only if it may take something: in others nothing grows, and a share of
     * nothing is no number. */
    void configureFor(const Request &request) const;
    /** Sets the configuration for LSPs that nothing has to give way for. */
    void configureForBackups() const;

private:
    EngineLock lock = lockEngine();
    Session &session;
    DataBase *const savedDataBase;
    const TARNEXConfig savedConfig;
    const ErrorList savedTrail;
    const int savedClassTypes;
    const int savedLevels;
    const double savedCost;
    const bool savedPrints;
    const bool savedFailure;
};

/** Refuses a call. */
[[noreturn]] void wrong(const std::string &what);

} // namespace tarnex::inside

struct tarnex::Engine::State : inside::Session {
    using Session::Session;
};

#endif
