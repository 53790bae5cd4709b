#!/bin/sh
# A reminder of the running program reaches the desktop: the program runs
# headless on the virtual clock over a store with one appointment whose
# reminder falls due, on a private session bus with a real notification
# server (dunst on a virtual X display), and dbus-monitor on that bus must
# see the Notify call with the appointment's subject, time and location.
#
#   reminder_notification.sh MIRODATE_BINARY
set -eu
program=$1
for tool in dbus-run-session dbus-monitor dbus-send dunst xvfb-run; do
    if ! command -v "$tool" >/dev/null 2>&1; then
        echo "SKIP: $tool is not installed (scripts/install-deps.sh installs it)"
        exit 77
    fi
done

work=$(mktemp -d /tmp/mirodate-notify-XXXXXX)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/store/calendar" "$work/store/tasks" "$work/store/contacts" "$work/config" "$work/cache" \
    "$work/runtime"
chmod 700 "$work/runtime"
printf '%s\r\n' 'BEGIN:VCALENDAR' 'VERSION:2.0' 'PRODID:-//other//EN' 'BEGIN:VEVENT' 'UID:notify-1' \
    'SUMMARY:Dentist with Dr. Ng' 'LOCATION:Harbour Street 4' 'DTSTART:20260316T090000Z' \
    'DTEND:20260316T093000Z' 'BEGIN:VALARM' 'ACTION:DISPLAY' 'DESCRIPTION:Reminder' 'TRIGGER:-PT15M' \
    'END:VALARM' 'END:VEVENT' 'END:VCALENDAR' > "$work/store/calendar/notify-1.ics"
# From 08:40 the reminder falls due five minutes of clock time later.
printf 'wait 310000\nquit\n' > "$work/script"

export TZ=UTC LANG=C XDG_CONFIG_HOME="$work/config" XDG_CACHE_HOME="$work/cache" \
    XDG_RUNTIME_DIR="$work/runtime" WORK="$work" PROGRAM="$program"
xvfb-run -a dbus-run-session -- sh -c '
    dbus-monitor "interface=org.freedesktop.Notifications" > "$WORK/monitor.txt" 2>/dev/null &
    monitor=$!
    dunst > "$WORK/dunst.log" 2>&1 &
    server=$!
    tries=0
    until dbus-send --session --print-reply --dest=org.freedesktop.DBus / org.freedesktop.DBus.NameHasOwner \
            string:org.freedesktop.Notifications 2>/dev/null | grep -q "boolean true"; do
        tries=$((tries + 1))
        if [ $tries -gt 100 ]; then echo "the notification server did not start"; cat "$WORK/dunst.log"; break; fi
        sleep 0.1
    done
    status=0
    timeout 60 "$PROGRAM" --headless --virtual-clock --now 2026-03-16T08:40 --store "$WORK/store" \
        --socket "$WORK/runtime/sock" --script "$WORK/script" || status=$?
    sleep 0.5
    kill $server $monitor 2>/dev/null || true
    exit $status
'
if ! grep -q 'member=Notify' "$work/monitor.txt"; then
    echo "FAIL: no Notify call on the session bus"
    cat "$work/monitor.txt"
    exit 1
fi
for text in 'string "Dentist with Dr. Ng"' 'Harbour Street 4' '9:00'; do
    if ! grep -q "$text" "$work/monitor.txt"; then
        echo "FAIL: the Notify call lacks $text"
        cat "$work/monitor.txt"
        exit 1
    fi
done
echo "PASS: the reminder reached the notification server"
