// Puts the page together.

import { library, settingsOfTheWhole } from "./engine/library.js";
import { groupsOf } from "./model/description.js";
import { History } from "./model/history.js";
import { EditedRecord } from "./model/record.js";
import { Session } from "./session.js";
import { startComparing } from "./view/comparing.js";
import { find } from "./view/element.js";
import { startExporting } from "./view/exporting.js";
import { startKeys } from "./view/keys.js";
import { startLooking } from "./view/looking.js";
import { tellError } from "./view/messages.js";
import { startOpening } from "./view/opening.js";
import { fillPanel } from "./view/panel.js";
import { startPresets } from "./view/presets.js";
import { startSharing } from "./view/sharing.js";
import { Stage } from "./view/stage.js";
import { startTheme } from "./view/theme.js";

async function start() {
    startTheme();
    const stage = new Stage();
    const k = await library();
    const groups = groupsOf(k.settings);
    const session = new Session(stage, settingsOfTheWhole(k, groups), (error) => {
        const { message } = /** @type {Error} */ (error);
        tellError(new Error(`The picture could not be adjusted: ${message}. Your settings are kept.`));
    });
    const record = new EditedRecord(k.settings);
    const history = new History(record);
    session.follow(record);

    fillPanel(record, groups, (values, data) => {
        const width = data.length / 4;
        return k.adjust({ data, width, height: 1, order: "rgba" }, values).data;
    });
    const looking = startLooking(stage);
    const comparing = startComparing(stage);
    const exporting = startExporting(session, record);
    const presets = startPresets(session, record, k);
    const opening = startOpening({
        openPhotograph: (file, most) => session.open(file, most),
        openPreset: (file) => presets.open(file),
    });
    const undo = () => history.undo();
    const redo = () => history.redo();
    startKeys({
        undo,
        redo,
        choosePicture: opening.choosePicture,
        exportPicture: exporting.open,
        comparing,
        looking,
    });
    startSharing(record, k);

    const buttons = {
        undo: find("undo", HTMLButtonElement),
        redo: find("redo", HTMLButtonElement),
        resetAll: find("reset-all", HTMLButtonElement),
    };
    buttons.undo.addEventListener("click", undo);
    buttons.redo.addEventListener("click", redo);
    buttons.resetAll.addEventListener("click", () => record.replace({}, "reset"));
    history.addEventListener("change", () => {
        buttons.undo.disabled = !history.canUndo;
        buttons.redo.disabled = !history.canRedo;
    });
    const showChanged = () => {
        buttons.resetAll.disabled = Object.keys(record.changed).length === 0;
    };
    record.addEventListener("change", showChanged);
    showChanged();

    session.addEventListener("open", () => {
        const { photograph } = session;
        if (!photograph) return;
        const { name, width, height } = photograph;
        find("welcome", HTMLElement).hidden = true;
        find("file-name", HTMLElement).textContent = `${name} · ${width} × ${height}`;
        document.title = `${name} – keladjust`;
        for (const id of ["compare", "fit", "zoom", "export"]) {
            find(id, HTMLButtonElement).disabled = false;
        }
    });

    await presets.addBuiltIn();
    document.documentElement.dataset.ready = "";
}

start().catch((error) => tellError(new Error(`The page could not start: ${error.message}`)));
