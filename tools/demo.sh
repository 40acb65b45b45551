# shellcheck shell=bash
# Sourced after tools/common.sh by who shows the client on simulated cameras.

# prepare_demo CAMSIM COUNT FOLDER: starts that many simulated cameras (to be ended by end_started),
# writes settings that know them into the empty folder, and sets the environment with which the
# client takes these settings and stays on this machine.
prepare_demo() {
    local camsim=$1 count=$2 folder=$3 i name tries ids=() options=()
    local names=("Front door" "Garage" "Garden" "Living room" "Driveway" "Workshop")
    for ((i = 0; i < count; i++)); do
        ids+=("$(cat /proc/sys/kernel/random/uuid)")
        name=${names[i % ${#names[@]}]}
        ((i < ${#names[@]})) || name="$name $((i / ${#names[@]} + 1))"
        options+=(--uid "${ids[i]}" --name "$name")
    done

    : >"$folder/cameras.json"
    "$camsim" --count "$count" --user admin --password demo --no-timecode "${options[@]}" \
        >"$folder/cameras.json" 2>"$folder/camsim.log" &
    started+=($!)
    for ((tries = 0; tries < 300; tries++)); do
        [ "$(grep -c '"uid"' "$folder/cameras.json")" -lt "$count" ] || break
        kill -0 "${started[-1]}" 2>/dev/null || break
        read -r -t 0.1 <> <(:) || true
    done
    [ "$(grep -c '"uid"' "$folder/cameras.json")" -eq "$count" ] || {
        cat "$folder/camsim.log" >&2
        fail "the simulated cameras did not start"
    }

    mkdir -p "$folder/data/Zelvaro" "$folder/config" "$folder/Album"
    {
        echo "ALBUMPATH=$folder/Album"
        for ((i = 0; i < count; i++)); do
            name=$(sed -n "$((i + 1))s/.*\"name\": *\"\([^\"]*\)\".*/\1/p" "$folder/cameras.json")
            printf '[%d]\nTYPE=P2P\nHOSTNAME=%s\nUSERNAME=admin\nPASSWORD=demo\nNAME="%s"\nMULTILIVE=1\n' \
                "$i" "${ids[i]}" "$name"
        done
    } >"$folder/data/Zelvaro/Zelvaro.cfg"

    # Cameras are looked for on loopback only.
    export XDG_DATA_HOME=$folder/data XDG_CONFIG_HOME=$folder/config
    export ZELVARO_DISCOVERY_MULTICAST=0
    ZELVARO_DISCOVERY_TARGETS=$(sed -n 's/.*"discovery": *"\([^"]*\)".*/\1/p' "$folder/cameras.json" | paste -sd,)
    export ZELVARO_DISCOVERY_TARGETS
}
