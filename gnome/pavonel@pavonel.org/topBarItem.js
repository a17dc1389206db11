import Cairo from 'cairo';
import Clutter from 'gi://Clutter';
import Gio from 'gi://Gio';
import GLib from 'gi://GLib';
import St from 'gi://St';

const ITEM = 'org.kde.StatusNotifierItem';
const ITEM_PATH = '/StatusNotifierItem';
const MENU = 'com.canonical.dbusmenu';
const MENU_PATH = '/MenuBar';

/** The item that Pavonel offers to every desktop, in the top bar. Where another extension shows such items, it does. */
export class TopBarItem {
    constructor({Main, PanelMenu, PopupMenu}, bus, pavonel) {
        this._bus = bus;
        this._pavonel = pavonel;
        this._popup = PopupMenu;
        this._gone = new Gio.Cancellable();
        this._build(PanelMenu);
        Main.panel.addToStatusArea('pavonel', this._button);
        this._otherHost = Gio.bus_watch_name(Gio.BusType.SESSION, 'org.kde.StatusNotifierWatcher',
            Gio.BusNameWatcherFlags.NONE, () => this._button.hide(), () => this._button.show());
        this._signals = ['NewIcon', 'XAyatanaNewLabel'].map(signal => bus.signal_subscribe(pavonel, ITEM, signal,
            ITEM_PATH, null, Gio.DBusSignalFlags.NONE, () => this._readItem()));
        this._readItem();
    }

    destroy() {
        this._gone.cancel();
        this._signals.forEach(id => this._bus.signal_unsubscribe(id));
        Gio.bus_unwatch_name(this._otherHost);
        this._button.destroy();
    }

    _build(PanelMenu) {
        this._button = new PanelMenu.Button(0.5, 'Pavonel');
        this._button.hide();
        this._icon = new St.DrawingArea({style: 'width: 18px; height: 18px;', y_align: Clutter.ActorAlign.CENTER});
        this._icon.connect('repaint', area => this._paint(area));
        this._label = new St.Label({y_align: Clutter.ActorAlign.CENTER, style: 'margin-left: 4px;'});
        const box = new St.BoxLayout({style_class: 'panel-status-indicators-box'});
        box.add_child(this._icon);
        box.add_child(this._label);
        this._button.add_child(box);
        this._button.menu.connect('open-state-changed', (_, isOpen) => isOpen && this._readMenu());
    }

    /** The icon is only a shape, for the colour of the bar. */
    _paint(area) {
        const context = area.get_context();
        if (this._shape) {
            const [width, height] = area.get_surface_size();
            const {red, green, blue, alpha} = area.get_theme_node().get_foreground_color();
            context.scale(width / this._shape.getWidth(), height / this._shape.getHeight());
            context.setSourceRGBA(red / 255, green / 255, blue / 255, alpha / 255);
            context.maskSurface(this._shape, 0, 0);
        }
        context.$dispose();
    }

    _readItem() {
        this._call(ITEM_PATH, 'org.freedesktop.DBus.Properties', 'GetAll', new GLib.Variant('(s)', [ITEM]), ([item]) => {
            this._label.text = item.XAyatanaLabel;
            this._label.visible = item.XAyatanaLabel !== '';
            this._shape = item.IconName === ''
                ? null : Cairo.ImageSurface.createFromPNG(`${item.IconThemePath}/${item.IconName}.png`);
            this._icon.visible = this._shape !== null;
            this._icon.queue_repaint();
            if (this._button.menu.isEmpty()) // such a menu does not open
                this._readMenu();
        });
    }

    _readMenu() {
        this._call(MENU_PATH, MENU, 'GetLayout', new GLib.Variant('(iias)', [0, -1, []]), ([, [, , items]]) => {
            this._button.menu.removeAll();
            this._fill(this._button.menu, items);
        });
    }

    _fill(menu, items) {
        for (const [id, properties, children] of items) {
            const text = (properties.label ?? '').replaceAll('__', '_');
            if (properties.type === 'separator') {
                menu.addMenuItem(new this._popup.PopupSeparatorMenuItem());
            } else if (properties['children-display'] === 'submenu') {
                const item = new this._popup.PopupSubMenuMenuItem(text);
                this._fill(item.menu, children);
                menu.addMenuItem(item);
            } else {
                const item = new this._popup.PopupMenuItem(text);
                item.setSensitive(properties.enabled ?? true);
                item.connect('activate', () => this._click(id));
                menu.addMenuItem(item);
            }
        }
    }

    _click(id) {
        this._call(MENU_PATH, MENU, 'Event',
            new GLib.Variant('(isvu)', [id, 'clicked', new GLib.Variant('s', ''), global.get_current_time()]), () => {});
    }

    _call(path, iface, method, parameters, then) {
        this._bus.call(this._pavonel, path, iface, method, parameters, null, Gio.DBusCallFlags.NO_AUTO_START, -1,
            this._gone, (bus, result) => {
                if (this._gone.is_cancelled())
                    return;
                try {
                    then(bus.call_finish(result).recursiveUnpack());
                } catch (error) {
                    console.warn(`Pavonel did not answer ${method}: ${error.message}`);
                }
            });
    }
}
