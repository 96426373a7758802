/* Counts, handles and lists as threads share them, step by step as the library takes them, for
 * spin: scripts/model explores every order in which the steps of the threads can come.
 *
 *     THREADS      how many threads
 *     STEPS        how many operations each makes; which, is tried in every way
 *     ASSIGNMENTS  those are assignments of lists alone
 *
 * What must hold: nobody waits for ever (spin calls that an invalid end state), nobody touches an
 * object that is freed or frees it twice, and in the end each count is the number of references.
 *
 * The two ways to wait for ever that are documented, each of which spin must find:
 *
 *     CROSSWISE    lists are assigned in any order: to each other, or in a ring of LISTS
 *     DESTRUCTORS  the destructor of an object that a handle lets go copies the other handle
 *
 * Mistakes, which spin must find:
 *
 *     UNCOUNTED    counts change without the object's mutex
 *     UNHELD       a handle is copied without its mutex
 *     LATE         a list counts an item once it stands in it and the list is free again
 *     EARLY        the old object of a handle is let go while another still can copy it
 */

#ifndef LISTS
#define LISTS 2
#endif
#define HANDLES 2
#define SLOTS 2
#define OBJECTS (HANDLES + LISTS + THREADS * STEPS)
#define none 255

byte count[OBJECTS];
byte objectMutex[OBJECTS];  /* the thread that has it, from 1; 0 when it is free */
bool isFreed[OBJECTS];
byte made;

byte held[HANDLES];
byte handleMutex[HANDLES];

typedef List {
    byte guard;
    byte length;
    byte slot[SLOTS];
}
List list[LISTS];

byte finished;

#define me (_pid + 1)

inline Lock(mutex) {
    atomic { mutex == 0 -> mutex = me }
}

inline Unlock(mutex) {
    assert(mutex == me);
    mutex = 0
}

inline LockCount(object) {
#ifndef UNCOUNTED
    Lock(objectMutex[object])
#else
    skip
#endif
}

inline UnlockCount(object) {
#ifndef UNCOUNTED
    Unlock(objectMutex[object])
#else
    skip
#endif
}

/* A new object, without a reference. */
inline Make(object) {
    atomic { object = made; made++ }
}

inline Take(object) {
    if
    :: object == none
    :: else ->
        assert(!isFreed[object]);
        LockCount(object);
        before = count[object];
        count[object] = before + 1;
        UnlockCount(object)
    fi
}

/* Leaves in `isLast` whether the object is to be deleted. */
inline Drop(object) {
    isLast = false;
    if
    :: object == none
    :: else ->
        assert(!isFreed[object]);
        LockCount(object);
        before = count[object];
        assert(before > 0);
        count[object] = before - 1;
        isLast = before == 1;
        UnlockCount(object)
    fi
}

inline Delete(object) {
    assert(!isFreed[object]);
    isFreed[object] = true
}

inline LetGo(object) {
    Drop(object);
    if
    :: isLast -> Delete(object)
    :: else
    fi
}

/* What a thread does with a handle. Its own handles nobody else has: their mutexes are left out. */

inline CopyHandle(handle) {
#ifndef UNHELD
    Lock(handleMutex[handle]);
#endif
    mine = held[handle];
    Take(mine);
#ifndef UNHELD
    Unlock(handleMutex[handle]);
#endif
    skip
}

inline AssignHandle(handle, object) {
    Lock(handleMutex[handle]);
    if
    :: object == held[handle]
    :: else ->
        Take(object);
#ifdef EARLY
        Unlock(handleMutex[handle]);
#endif
        Drop(held[handle]);
        if
        :: isLast ->
#ifdef DESTRUCTORS
            Lock(handleMutex[1 - (handle)]);
            dying = held[1 - (handle)];
            Take(dying);
            Unlock(handleMutex[1 - (handle)]);
            LetGo(dying);
#endif
            Delete(held[handle])
        :: else
        fi;
#ifdef EARLY
        Lock(handleMutex[handle]);
#endif
        held[handle] = object
    fi;
    Unlock(handleMutex[handle])
}

/* What it does with a list. */

inline Insert(which, object) {
    Lock(list[which].guard);
    if
    :: list[which].length == SLOTS ->
        Unlock(list[which].guard);
        Delete(object)
    :: else ->
#ifndef LATE
        Take(object);
#endif
        list[which].slot[list[which].length] = object;
        list[which].length++;
        Unlock(list[which].guard)
#ifdef LATE
        ; Take(object)
#endif
    fi
}

inline RemoveLast(which) {
    Lock(list[which].guard);
    if
    :: list[which].length == 0
    :: else ->
        dying = list[which].slot[list[which].length - 1];
        LetGo(dying);
        list[which].length--;
        list[which].slot[list[which].length] = none
    fi;
    Unlock(list[which].guard)
}

/* Of a list of the thread's own, which then goes. */
inline CopyList(which) {
    Lock(list[which].guard);
    own[0] = list[which].slot[0];
    own[1] = list[which].slot[1];
    Take(own[0]);
    Take(own[1]);
    Unlock(list[which].guard);
    LetGo(own[0]);
    LetGo(own[1]);
    own[0] = none;
    own[1] = none
}

inline AssignList(to, from) {
    Lock(list[to].guard);
    Lock(list[from].guard);
    Take(list[from].slot[0]);
    Take(list[from].slot[1]);
    LetGo(list[to].slot[0]);
    LetGo(list[to].slot[1]);
    d_step {
        list[to].slot[0] = list[from].slot[0];
        list[to].slot[1] = list[from].slot[1];
        list[to].length = list[from].length
    }
    Unlock(list[to].guard);
    Unlock(list[from].guard)
}

proctype Thread() {
    byte before, mine = none, dying = none, fresh = none, steps = 0;
    byte which;
    byte own[SLOTS];
    bool isLast;
    own[0] = none;
    own[1] = none;

    do
    :: steps == STEPS -> break
    :: steps < STEPS ->
        steps++;
        if
#ifndef ASSIGNMENTS
        :: select(which : 0 .. HANDLES - 1) -> CopyHandle(which);
            /* Into another handle, so that what two hold is let go by both. */
            AssignHandle(1 - which, mine);
            LetGo(mine)
        :: select(which : 0 .. HANDLES - 1) -> Make(fresh);
            AssignHandle(which, fresh)
        :: select(which : 0 .. HANDLES - 1) -> AssignHandle(which, none)
        :: select(which : 0 .. LISTS - 1) -> Make(fresh);
            Insert(which, fresh)
        :: select(which : 0 .. LISTS - 1) -> RemoveLast(which)
        :: select(which : 0 .. LISTS - 1) -> CopyList(which)
#endif
        :: select(which : 0 .. LISTS - 1) ->
#ifdef CROSSWISE
            AssignList(which, (which + 1) % LISTS)
#else
            if
            :: which + 1 < LISTS -> AssignList(which, which + 1)
            :: else
            fi
#endif
        fi;
        d_step {
            mine = none;
            dying = none;
            fresh = none;
            before = 0;
            which = 0;
            isLast = false
        }
    od;
    finished++
}

init {
    byte i = 0, j = 0, references = 0;
    d_step {
        do
        :: i < HANDLES -> held[i] = made; count[made] = 1; made++; i++
        :: else -> break
        od;
        i = 0;
        do
        :: i < LISTS ->
            list[i].slot[0] = made; count[made] = 1; made++;
            list[i].slot[1] = none;
            list[i].length = 1;
            i++
        :: else -> break
        od;
        i = 0
    }
    atomic {
        do
        :: i < THREADS -> run Thread(); i++
        :: else -> break
        od
    }
    finished == THREADS;
    d_step {
        i = 0;
        do
        :: i < made ->
            references = 0;
            j = 0;
            do
            :: j < HANDLES -> references = references + (held[j] == i -> 1 : 0); j++
            :: else -> break
            od;
            j = 0;
            do
            :: j < LISTS ->
                references = references + (list[j].slot[0] == i -> 1 : 0);
                references = references + (list[j].slot[1] == i -> 1 : 0);
                j++
            :: else -> break
            od;
            assert(count[i] == references);
            assert(isFreed[i] == (references == 0));
            i++
        :: else -> break
        od
    }
}
